#include "Toolkit/History/NamedPairs.h"

#include "Engine/Model/Model.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Ask/ColumnPairs.h"

namespace qe::tool {

std::string ToColumnName(const std::string& table, const std::string& column)
{
    return ascii::ToLower(table + '.' + column);
}

std::vector<NamedPair> FindNamedPairs(const model::Model& model, const amd_id& left,
                                      const amd_id& right, const std::string& condition)
{
    const auto toName = [&](const Column& column) {
        for (const amd_id& end : {left, right}) {
            const auto* const target = model.Find(model.GetTarget(end));
            if (target != nullptr && model.GetQualifiedName(end) == column.subject)
                return ToColumnName(target->name, column.name);
        }
        return ToColumnName(column.subject.back(), column.name);
    };
    std::vector<NamedPair> pairs;
    for (const ColumnPair& pair : FindColumnPairs(condition))
        pairs.emplace_back(toName(pair.left), toName(pair.right));
    return pairs;
}

} // namespace qe::tool
