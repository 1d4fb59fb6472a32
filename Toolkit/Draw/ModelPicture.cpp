#include "Toolkit/Draw/ModelPicture.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Check/ModelGraph.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace qe::tool {

namespace {

/// Returns the subjects to draw, as positions in order.
std::set<std::size_t> ChooseSubjects(const ModelGraph& model, const std::vector<amd_id>& around,
                                     ListLimit limit)
{
    const auto subjects = model.GetSubjects();
    const std::set<amd_id> centre(around.begin(), around.end());
    // Nearest first, then the most joins, then the lowest id.
    std::vector<std::tuple<int, std::size_t, std::size_t>> order;
    for (std::size_t i = 0; i < subjects.size(); ++i) {
        const auto steps = model.GetSteps(i);
        const bool isNeighbour = std::any_of(steps.begin(), steps.end(), [&](const auto& step) {
            return centre.count(subjects[step.subject]) > 0;
        });
        const bool isCentre = centre.count(subjects[i]) > 0;
        if (centre.empty() || isCentre || isNeighbour)
            order.emplace_back(isCentre ? 0 : 1, subjects.size() - steps.size(), i);
    }
    std::sort(order.begin(), order.end());
    order.resize(limit.CountShown(order.size()));
    std::set<std::size_t> chosen;
    for (const auto& [distance, rank, position] : order)
        chosen.insert(position);
    return chosen;
}

} // namespace

Picture DrawModel(const ToolModel& toolModel, const std::vector<amd_id>& around, ListLimit limit)
{
    const ModelGraph model(toolModel);
    FactMarks marks;
    for (const ModelJoin& join : model.GetJoins())
        marks.Add(ToAnswerJoin(model, join));
    Picture picture;
    picture.subjects = model.GetSubjects().size();
    std::map<amd_id, std::size_t> positions;
    for (const std::size_t position : ChooseSubjects(model, around, limit)) {
        PictureNode node;
        node.id = model.GetSubjects()[position];
        node.name = model.NameOf(position);
        node.kind = marks.KindOf(node.id);
        if (node.kind == PictureNode::EKind::Shortcut)
            node.target = model.NameOf(model.GetModel().GetTarget(node.id));
        if (std::find(around.begin(), around.end(), node.id) != around.end())
            node.role = PictureNode::ERole::Asked;
        positions.emplace(node.id, picture.nodes.size());
        picture.nodes.push_back(std::move(node));
    }
    for (const ModelJoin& join : model.GetJoins()) {
        const AnswerJoin drawn = ToAnswerJoin(model, join);
        const bool joinsShortcuts = join.id.classCode == IdClassShortcutJoin &&
                                    drawn.left.classCode == drawn.right.classCode;
        if (positions.count(drawn.left) > 0 && positions.count(drawn.right) > 0 && !joinsShortcuts)
            picture.edges.push_back(MakePictureEdge(drawn, positions));
    }
    return picture;
}

} // namespace qe::tool
