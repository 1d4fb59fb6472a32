#include "Toolkit/Draw/Picture.h"

#include "IdClass.h"
#include "Source/Rules/Cardinality.h"
#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Check/ModelGraph.h"

#include <utility>

namespace qe::tool {

AnswerJoin ToAnswerJoin(const ModelGraph& model, const ModelJoin& join)
{
    return {.id = join.id,
            .name = join.name,
            .left = model.GetSubjects()[join.left],
            .right = model.GetSubjects()[join.right],
            .condition = join.condition,
            .leftCardinality = join.leftCardinality,
            .rightCardinality = join.rightCardinality,
            .weight = join.weight};
}

PictureEdge MakePictureEdge(const AnswerJoin& join, const std::map<amd_id, std::size_t>& positions)
{
    PictureEdge edge;
    edge.id = join.id;
    edge.name = join.name;
    edge.first = positions.at(join.left);
    edge.second = positions.at(join.right);
    edge.firstCardinality = ToText(join.leftCardinality);
    edge.secondCardinality = ToText(join.rightCardinality);
    const bool isShortcutJoin = join.id.classCode == IdClassShortcutJoin;
    if (isShortcutJoin)
        edge.kind = PictureEdge::EKind::StandsFor;
    // The shortcut comes before what it stands for.
    const bool isReversed =
        isShortcutJoin ? join.right.classCode == IdClassShortcut
                       : IsToMany(join.rightCardinality) && !IsToMany(join.leftCardinality);
    if (isReversed) {
        std::swap(edge.first, edge.second);
        std::swap(edge.firstCardinality, edge.secondCardinality);
    }
    return edge;
}

void FactMarks::Add(const AnswerJoin& join)
{
    const bool leftIsMany = IsToMany(join.leftCardinality);
    if (leftIsMany == IsToMany(join.rightCardinality) || join.left == join.right)
        return;
    mMarks.emplace(leftIsMany ? join.left : join.right, EMark::Fact);
    mMarks[leftIsMany ? join.right : join.left] = EMark::Dimension;
}

PictureNode::EKind FactMarks::KindOf(const amd_id& subject) const
{
    if (subject.classCode == IdClassShortcut)
        return PictureNode::EKind::Shortcut;
    const auto mark = mMarks.find(subject);
    if (mark == mMarks.end())
        return PictureNode::EKind::Plain;
    return mark->second == EMark::Fact ? PictureNode::EKind::Fact : PictureNode::EKind::Dimension;
}

} // namespace qe::tool
