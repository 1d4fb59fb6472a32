#include "Toolkit/Evaluate/ColumnClasses.h"

#include "Engine/Services/AsciiText.h"

#include <algorithm>
#include <iterator>

namespace qe::tool {

ColumnClasses::ColumnClasses(const std::vector<NamedPair>& pairs)
{
    std::map<std::string, std::set<std::string>> neighbours;
    for (const auto& [left, right] : pairs) {
        neighbours[left].insert(right);
        neighbours[right].insert(left);
    }
    while (!neighbours.empty()) {
        std::set<std::string> members;
        std::vector<std::string> open{neighbours.begin()->first};
        while (!open.empty()) {
            const std::string column = std::move(open.back());
            open.pop_back();
            if (!members.insert(column).second)
                continue;
            const auto found = neighbours.find(column);
            open.insert(open.end(), found->second.begin(), found->second.end());
            neighbours.erase(found);
        }
        mClasses.insert(std::move(members));
    }
}

bool ColumnClasses::CanBeMadeOf(const std::vector<NamedPair>& pairs) const
{
    std::vector<NamedPair> inside;
    for (const std::set<std::string>& members : mClasses)
        std::copy_if(pairs.begin(), pairs.end(), std::back_inserter(inside),
                     [&members](const NamedPair& pair) {
                         return members.count(pair.first) != 0 && members.count(pair.second) != 0;
                     });
    return ColumnClasses(inside) == *this;
}

std::string ToColumnName(const std::string& table, const std::string& column)
{
    return ascii::ToLower(table + '.' + column);
}

} // namespace qe::tool
