#include "Toolkit/History/PastQuery.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"

#include <algorithm>
#include <utility>

namespace qe::tool {

namespace {

/// Cannot stand in what it separates: readers refuse it.
constexpr char kSeparator = '\0';

template <typename Value>
void MakeSet(std::vector<Value>& values)
{
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
}

} // namespace

std::string ToTableName(std::string_view subject)
{
    const model::QualifiedName name = model::ParseQualifiedName(subject);
    return name.empty() ? std::string() : ascii::ToLower(name.back());
}

void Normalise(PastQuery& query)
{
    // Most tables are named several times: only those that are kept are copied.
    std::vector<std::string_view> tables(query.tables.begin(), query.tables.end());
    for (NamedPair& pair : query.pairs) {
        if (pair.second < pair.first)
            std::swap(pair.first, pair.second);
    }
    MakeSet(query.pairs);
    for (const auto& [first, second] : query.pairs) {
        for (const std::string_view column : {std::string_view(first), std::string_view(second)})
            tables.push_back(column.substr(0, column.rfind('.')));
    }
    MakeSet(tables);
    query.tables = std::vector<std::string>(tables.begin(), tables.end());
}

std::string JoinsKey(const PastQuery& query)
{
    std::string key;
    for (const std::string& table : query.tables)
        (key += table) += kSeparator;
    key += kSeparator;
    for (const NamedPair& pair : query.pairs)
        (((key += pair.first) += kSeparator) += pair.second) += kSeparator;
    return key;
}

std::string TextKey(const PastQuery& query)
{
    return query.database + kSeparator +
           (query.text.empty() ? kSeparator + JoinsKey(query) : query.text);
}

} // namespace qe::tool
