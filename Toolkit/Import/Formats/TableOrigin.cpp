#include "Toolkit/Import/Formats/TableOrigin.h"

#include "Toolkit/Import/Formats/MQuery.h"
#include "Toolkit/Text/DisplayText.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace qe::tool {

namespace {

using nlohmann::json;

/// Returns the text of an expression, which may be a list of lines.
std::string JoinLines(const PlacedJson& expression, JsonProblems& problems)
{
    const auto read = [&problems](const PlacedJson& line) {
        return line.value->is_string() ? ReadText(line, problems).value_or("") : "";
    };
    if (!expression.value->is_array())
        return read(expression);
    return JoinTexts(ReadList(expression, problems), read, "\n");
}

std::optional<QueriedTable> SeeThrough(const PlacedJson& placed, std::string type,
                                       JsonProblems& problems)
{
    const json& source = *placed.value;
    if (!source.is_object())
        return type.empty() || type == "m" ? SeeThroughM(JoinLines(placed, problems))
                                           : std::nullopt;
    JsonObject object(placed, problems);
    if (type.empty())
        type = object.GetText("type");
    if (type == "entity") {
        QueriedTable table{.path = {object.GetText("schemaName"), object.GetText("entityName")}};
        std::erase(table.path, "");
        return table;
    }
    const bool isSql = source.contains("query") && (type.empty() || type == "query");
    if (isSql)
        return SeeThroughSql(JoinLines(object.Find("query"), problems));
    const bool isM = source.contains("expression") && (type.empty() || type == "m");
    return isM ? SeeThroughM(JoinLines(object.Find("expression"), problems)) : std::nullopt;
}

} // namespace

void TableOrigin::AddPartition(const PlacedJson& source, std::string type, JsonProblems& problems)
{
    std::optional<QueriedTable> read = SeeThrough(source, std::move(type), problems);
    if (mPartitions++ == 0 && read) {
        mTable = std::move(*read);
    } else if (read && read->path == mTable.path) {
        mTable.renamed.merge(read->renamed);
    } else {
        mTable = {};
    }
}

void TableOrigin::UseColumn(const std::string& column)
{
    const auto named = mNames.find(column);
    const bool isCalledSo = named == mNames.end() || named->second == column;
    if (!isCalledSo || mTable.renamed.contains(column))
        mTable = {};
}

} // namespace qe::tool
