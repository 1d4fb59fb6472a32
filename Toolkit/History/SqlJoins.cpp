#include "Toolkit/History/SqlJoins.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/History/SchemaColumns.h"
#include "Toolkit/Text/InputFile.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

namespace qe::tool {

namespace {

using Json = nlohmann::json;
/// What the columns of a subquery stand for, as "table.column".
using Outputs = std::map<std::string, std::string>;

/// Returns the member, or null when there is none.
const Json* Find(const Json& node, const char* key)
{
    const auto found = node.find(key);
    return found == node.end() ? nullptr : &*found;
}

const Json* Find(const Json& node, const char* key, const char* inner)
{
    const Json* const found = Find(node, key);
    return found == nullptr ? nullptr : Find(*found, inner);
}

std::string TextOf(const Json& node, const char* key)
{
    const Json* const found = Find(node, key);
    return found == nullptr ? std::string() : ascii::ToLower(found->get<std::string>());
}

/// One entry of FROM.
struct Source
{
    std::string alias{};
    /// Empty for a subquery.
    std::string table{};
    Outputs outputs{};
};

class SelectReader
{
public:
    explicit SelectReader(const SchemaColumns* columns) : mColumns(columns) {}

    void ReadStatement(const Json& select)
    {
        mFound.emplace_back();
        static_cast<void>(Read(select, std::make_shared<Withs>(), 0));
        // Subqueries of conditions may have further ones.
        while (!mOpen.empty()) {
            const auto [subquery, outer] = std::move(mOpen.back());
            mOpen.pop_back();
            mFound.emplace_back();
            static_cast<void>(Read(*subquery, outer, mFound.size() - 1));
        }
    }

    [[nodiscard]] std::vector<JoinedTables> Take() { return std::move(mFound); }

private:
    using Withs = std::map<std::string, Outputs>;
    /// Subqueries that are read later share what they know.
    using KnownWiths = std::shared_ptr<const Withs>;

    /// Where the entries of FROM are gathered, and into which of the results.
    struct Scope
    {
        std::vector<Source> sources{};
        KnownWiths withs{};
        std::size_t result = 0;
    };

    /// Reads a SELECT into one of the results, and returns what its columns stand for.
    Outputs Read(const Json& select, const KnownWiths& outer, std::size_t result);
    void ReadWiths(const Json& select, Scope& scope);
    void ReadFrom(const Json& node, Scope& scope);
    void ReadTable(const Json& table, Scope& scope);
    void ReadJoin(const Json& join, Scope& scope);
    void ReadUsing(const Json& names, std::size_t first, std::size_t middle, const Scope& scope);
    void ReadCondition(const Json& condition, const Scope& scope);
    void ReadEquality(const Json& expression, const Scope& scope);
    /// Keeps the subqueries of an expression to be read by themselves.
    void FindSubqueries(const Json& expression, const Scope& scope);
    [[nodiscard]] Outputs ReadOutputs(const Json& select, const Scope& scope) const;

    /// Returns "table.column" for a reference to a column; empty when it is none, or when it is
    /// not clear which.
    [[nodiscard]] std::string Resolve(const Json* reference, const Scope& scope) const;
    [[nodiscard]] std::string ResolveIn(std::span<const Source> sources,
                                        const std::string& column) const;
    [[nodiscard]] bool HasColumn(const Source& source, const std::string& column) const;
    [[nodiscard]] static std::string ColumnOf(const Source& source, const std::string& column);
    void AddPair(const std::string& left, const std::string& right, const Scope& scope);

    const SchemaColumns* mColumns;
    std::vector<JoinedTables> mFound;
    std::vector<std::pair<const Json*, KnownWiths>> mOpen;
};

Outputs SelectReader::Read(const Json& select, const KnownWiths& outer, std::size_t result)
{
    Scope scope{.withs = outer, .result = result};
    ReadWiths(select, scope);
    const Json* const left = Find(select, "larg");
    const Json* const right = Find(select, "rarg");
    if (left != nullptr && right != nullptr) {
        // The branches of a union are queries of their own; its columns are those of the first.
        mOpen.emplace_back(right, scope.withs);
        return Read(*left, scope.withs, result);
    }
    if (const Json* const from = Find(select, "fromClause")) {
        for (const Json& node : *from)
            ReadFrom(node, scope);
    }
    if (const Json* const where = Find(select, "whereClause"))
        ReadCondition(*where, scope);
    for (const char* const key : {"targetList", "havingClause"}) {
        if (const Json* const expression = Find(select, key))
            FindSubqueries(*expression, scope);
    }
    return ReadOutputs(select, scope);
}

void SelectReader::ReadWiths(const Json& select, Scope& scope)
{
    const Json* const list = Find(select, "withClause", "ctes");
    if (list == nullptr)
        return;
    for (const Json& entry : *list) {
        const Json* const with = Find(entry, "CommonTableExpr");
        if (with == nullptr)
            continue;
        const std::string name = TextOf(*with, "ctename");
        // One that refers to itself finds nothing that a column could stand for.
        const auto known = std::make_shared<Withs>(*scope.withs);
        (*known)[name] = {};
        scope.withs = known;
        if (const Json* const query = Find(*with, "ctequery", "SelectStmt"))
            (*known)[name] = Read(*query, known, scope.result);
    }
}

void SelectReader::ReadTable(const Json& table, Scope& scope)
{
    Source source{.alias = TextOf(table, "relname")};
    const std::string schema = TextOf(table, "schemaname");
    if (const auto with = scope.withs->find(source.alias);
        schema.empty() && with != scope.withs->end()) {
        source.outputs = with->second;
    } else {
        source.table = (schema.empty() ? "" : schema + '.') + source.alias;
        mFound[scope.result].tables.push_back(source.table);
    }
    if (const Json* const alias = Find(table, "alias"))
        source.alias = TextOf(*alias, "aliasname");
    scope.sources.push_back(std::move(source));
}

void SelectReader::ReadFrom(const Json& node, Scope& scope)
{
    if (const Json* const table = Find(node, "RangeVar"))
        return ReadTable(*table, scope);
    if (const Json* const join = Find(node, "JoinExpr"))
        return ReadJoin(*join, scope);
    const Json* const subquery = Find(node, "RangeSubselect");
    Source source;
    if (subquery != nullptr) {
        if (const Json* const query = Find(*subquery, "subquery", "SelectStmt"))
            source.outputs = Read(*query, scope.withs, scope.result);
        if (const Json* const alias = Find(*subquery, "alias"))
            source.alias = TextOf(*alias, "aliasname");
    }
    // Functions and the like have columns that stand for nothing.
    scope.sources.push_back(std::move(source));
}

void SelectReader::ReadJoin(const Json& join, Scope& scope)
{
    if (join.value("isNatural", false))
        throw InputError({InputProblem{"", "a NATURAL JOIN names no columns"}});
    const std::size_t first = scope.sources.size();
    ReadFrom(join.at("larg"), scope);
    const std::size_t middle = scope.sources.size();
    ReadFrom(join.at("rarg"), scope);
    if (const Json* const names = Find(join, "usingClause"))
        ReadUsing(*names, first, middle, scope);
    if (const Json* const condition = Find(join, "quals"))
        ReadCondition(*condition, scope);
}

void SelectReader::ReadUsing(const Json& names, std::size_t first, std::size_t middle,
                             const Scope& scope)
{
    const std::span<const Source> sources(scope.sources);
    for (const Json& entry : names) {
        const Json* const name = Find(entry, "String");
        if (name == nullptr)
            continue;
        const std::string column = TextOf(*name, "sval");
        AddPair(ResolveIn(sources.subspan(first, middle - first), column),
                ResolveIn(sources.subspan(middle), column), scope);
    }
}

void SelectReader::ReadCondition(const Json& condition, const Scope& scope)
{
    const Json* const combined = Find(condition, "BoolExpr");
    if (combined != nullptr && TextOf(*combined, "boolop") == "and_expr") {
        for (const Json& part : combined->at("args"))
            ReadCondition(part, scope);
        return;
    }
    if (const Json* const expression = Find(condition, "A_Expr"))
        ReadEquality(*expression, scope);
    FindSubqueries(condition, scope);
}

void SelectReader::ReadEquality(const Json& expression, const Scope& scope)
{
    if (TextOf(expression, "kind") != "aexpr_op")
        return;
    const Json& name = expression.at("name");
    const Json* const word = name.size() == 1 ? Find(name.front(), "String") : nullptr;
    if (word != nullptr && TextOf(*word, "sval") == "=")
        AddPair(Resolve(Find(expression, "lexpr"), scope),
                Resolve(Find(expression, "rexpr"), scope), scope);
}

void SelectReader::FindSubqueries(const Json& expression, const Scope& scope)
{
    std::vector<const Json*> open{&expression};
    while (!open.empty()) {
        const Json& node = *open.back();
        open.pop_back();
        if (!node.is_structured())
            continue;
        if (node.is_object()) {
            if (const Json* const query = Find(node, "SelectStmt")) {
                mOpen.emplace_back(query, scope.withs);
                continue;
            }
        }
        for (const Json& member : node)
            open.push_back(&member);
    }
}

Outputs SelectReader::ReadOutputs(const Json& select, const Scope& scope) const
{
    Outputs outputs;
    const Json* const list = Find(select, "targetList");
    if (list == nullptr)
        return outputs;
    for (const Json& entry : *list) {
        const Json* const target = Find(entry, "ResTarget");
        const std::string column =
            target == nullptr ? std::string() : Resolve(Find(*target, "val"), scope);
        if (column.empty())
            continue;
        const std::string name = TextOf(*target, "name");
        outputs.emplace(name.empty() ? column.substr(column.rfind('.') + 1) : name, column);
    }
    return outputs;
}

std::string SelectReader::ColumnOf(const Source& source, const std::string& column)
{
    if (!source.table.empty())
        return source.table + '.' + column;
    const auto found = source.outputs.find(column);
    return found == source.outputs.end() ? std::string() : found->second;
}

bool SelectReader::HasColumn(const Source& source, const std::string& column) const
{
    if (source.table.empty())
        return source.outputs.count(column) != 0;
    return mColumns != nullptr && mColumns->FindColumn(source.table + '.' + column).has_value();
}

std::string SelectReader::ResolveIn(std::span<const Source> sources,
                                    const std::string& column) const
{
    if (sources.size() == 1)
        return ColumnOf(sources.front(), column);
    const Source* owner = nullptr;
    for (const Source& source : sources) {
        if (!HasColumn(source, column))
            continue;
        if (owner != nullptr)
            return {};
        owner = &source;
    }
    return owner == nullptr ? std::string() : ColumnOf(*owner, column);
}

std::string SelectReader::Resolve(const Json* reference, const Scope& scope) const
{
    const Json* const fields =
        reference == nullptr ? nullptr : Find(*reference, "ColumnRef", "fields");
    if (fields == nullptr)
        return {};
    std::vector<std::string> names;
    for (const Json& field : *fields) {
        const Json* const name = Find(field, "String");
        if (name == nullptr)
            return {};
        names.push_back(TextOf(*name, "sval"));
    }
    if (names.size() == 1)
        return ResolveIn(scope.sources, names.front());
    const std::string& alias = names[names.size() - 2];
    for (const Source& source : scope.sources) {
        if (source.alias == alias)
            return ColumnOf(source, names.back());
    }
    return {};
}

void SelectReader::AddPair(const std::string& left, const std::string& right, const Scope& scope)
{
    if (!left.empty() && !right.empty() && left != right)
        mFound[scope.result].pairs.emplace_back(left, right);
}

} // namespace

std::vector<JoinedTables> FindSqlJoins(const nlohmann::json& statement,
                                       const SchemaColumns* columns)
{
    const Json* const select = Find(statement, "SelectStmt");
    if (select == nullptr)
        throw InputError({InputProblem{"", "not a query"}});
    SelectReader reader(columns);
    reader.ReadStatement(*select);
    return reader.Take();
}

} // namespace qe::tool
