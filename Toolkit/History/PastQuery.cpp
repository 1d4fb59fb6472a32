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
    for (NamedPair& pair : query.pairs) {
        if (pair.second < pair.first)
            std::swap(pair.first, pair.second);
        for (const std::string& column : {pair.first, pair.second})
            query.tables.push_back(column.substr(0, column.rfind('.')));
    }
    MakeSet(query.tables);
    MakeSet(query.pairs);
}

std::string TextKey(const PastQuery& query)
{
    std::string key = query.database + kSeparator;
    if (!query.text.empty())
        return key + query.text;
    key += kSeparator;
    for (const std::string& table : query.tables)
        key += table + kSeparator;
    key += kSeparator;
    for (const NamedPair& pair : query.pairs)
        key += pair.first + kSeparator + pair.second + kSeparator;
    return key;
}

} // namespace qe::tool
