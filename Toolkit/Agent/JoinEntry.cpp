#include "Toolkit/Agent/JoinEntry.h"

#include "Toolkit/Ask/NameResolver.h"

namespace qe::tool {

nlohmann::ordered_json JoinToJson(const model::Model& model, const AnswerJoin& join)
{
    return {{"name", JoinName(model, join.id)},
            {"left", SubjectName(model, join.left)},
            {"leftCardinality", ToText(join.leftCardinality)},
            {"right", SubjectName(model, join.right)},
            {"rightCardinality", ToText(join.rightCardinality)},
            {"condition", join.condition}};
}

std::string DescribeEnds(const model::Model& model, const AnswerJoin& join)
{
    return SubjectName(model, join.left) + ' ' + ToText(join.leftCardinality) + " -- " +
           ToText(join.rightCardinality) + ' ' + SubjectName(model, join.right) + ": " +
           JoinName(model, join.id);
}

} // namespace qe::tool
