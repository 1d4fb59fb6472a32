#include "Tests/Toolkit/SchemaLines.h"

#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <cstddef>
#include <map>

namespace qe::test {

namespace {

using tool::SchemaForeignKey;
using tool::SchemaTable;
using Names = std::vector<std::string>;

bool HoldsKey(const SchemaTable& table, const Names& columns)
{
    return std::any_of(table.keys.begin(), table.keys.end(), [&](const Names& key) {
        return std::all_of(key.begin(), key.end(), [&](const std::string& column) {
            return std::find(columns.begin(), columns.end(), column) != columns.end();
        });
    });
}

bool IsNotNull(const SchemaTable& table, const Names& columns)
{
    return std::all_of(columns.begin(), columns.end(), [&](const std::string& name) {
        return tool::FindColumn(table.columns, name)->isNotNull;
    });
}

} // namespace

std::string KeyLine(const std::string& table, std::vector<std::string> columns)
{
    std::sort(columns.begin(), columns.end());
    return "key " + table + " (" + tool::JoinTexts(columns) + ")";
}

std::string JoinLine(const JoinFacts& facts)
{
    Names pairs;
    for (std::size_t i = 0; i < facts.columns.size(); ++i)
        pairs.push_back(facts.columns[i] + " = " + facts.referenced.at(i));
    std::sort(pairs.begin(), pairs.end());
    return "join " + facts.table + " - " + facts.target + " (" + tool::JoinTexts(pairs) + ")" +
           (facts.isUnique ? " unique" : "") + (facts.isNotNull ? " not-null" : "") +
           (facts.isReferencedUnique ? "" : " to no key");
}

std::set<std::string> DescribeSchema(const tool::DatabaseSchema& schema)
{
    std::map<std::string, const SchemaTable*> tables;
    std::set<std::string> lines;
    for (const SchemaTable& table : schema.tables) {
        tables[table.name] = &table;
        lines.insert("table " + table.name);
        for (const Names& key : table.keys)
            lines.insert(KeyLine(table.name, key));
    }
    for (const SchemaTable& table : schema.tables)
        for (const SchemaForeignKey& key : table.foreignKeys)
            lines.insert(JoinLine({.table = table.name,
                                   .columns = key.from,
                                   .target = key.table,
                                   .referenced = key.to,
                                   .isUnique = HoldsKey(table, key.from),
                                   .isNotNull = IsNotNull(table, key.from),
                                   .isReferencedUnique = HoldsKey(*tables.at(key.table), key.to)}));
    return lines;
}

} // namespace qe::test
