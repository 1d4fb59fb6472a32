#include "Toolkit/History/HistoryPack.h"

#include "Engine/Model/Names.h"
#include "Toolkit/Text/JsonText.h"

#include <nlohmann/json.hpp>

#include <map>
#include <ostream>
#include <string>
#include <tuple>
#include <unordered_set>
#include <vector>

namespace qe::tool {

std::size_t WritePack(std::ostream& out, std::span<const PastQuery> queries)
{
    using Shape = std::tuple<std::string, std::vector<std::string>, std::vector<NamedPair>>;
    std::map<Shape, std::size_t> counts;
    std::unordered_set<std::string> texts;
    for (const PastQuery& query : queries) {
        if (texts.insert(TextKey(query)).second)
            counts[{query.database, query.tables, query.pairs}] += query.count;
    }
    for (const auto& [shape, count] : counts) {
        const auto& [database, tables, pairs] = shape;
        nlohmann::ordered_json record = nlohmann::ordered_json::object();
        if (!database.empty())
            record["db"] = database;
        nlohmann::ordered_json names = nlohmann::ordered_json::array();
        for (const std::string& table : tables)
            names.push_back(model::ToText({table}));
        record["subjects"] = std::move(names);
        nlohmann::ordered_json joins = nlohmann::ordered_json::array();
        for (const auto& [left, right] : pairs)
            joins.push_back({left, right});
        record["joins"] = std::move(joins);
        record["count"] = count;
        out << ToJsonLine(record) << '\n';
    }
    return counts.size();
}

} // namespace qe::tool
