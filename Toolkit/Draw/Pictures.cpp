#include "Toolkit/Draw/Pictures.h"

#include "Engine/Model/Model.h"
#include "IdClass.h"
#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Model/ToolModel.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
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

/// Of several decisions on a join, the one that is drawn prefers it.
void MarkDecisions(const ToolModel& model, Picture& picture)
{
    std::map<amd_id, std::string_view> marks;
    for (const Decision& decision : model.decisions) {
        for (const amd_id& join : decision.avoided)
            marks.emplace(join, "avoided");
    }
    for (const Decision& decision : model.decisions) {
        for (const amd_id& join : decision.preferred)
            marks[join] = "preferred";
    }
    for (PictureEdge& edge : picture.edges) {
        if (const auto mark = marks.find(edge.id); mark != marks.end())
            edge.decision = mark->second;
    }
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
    MarkDecisions(toolModel, picture);
    return picture;
}

namespace {

using Ids = std::vector<amd_id>;

class AnswerDrawing
{
public:
    AnswerDrawing(const ToolModel& model, const Answer& answer, const PictureLimits& limits)
        : mModel(model),
          mAnswer(answer),
          mLimits(limits),
          mPaths(ListShownPaths(answer, limits.alternatives)),
          mJoins(answer.joinsById)
    {
        AddCandidateJoins();
    }

    Picture Draw()
    {
        MarkAsked();
        MarkPaths();
        TouchAlternatives();
        ChooseSubjects();
        Picture picture;
        picture.subjects = mAnswer.candidateNodes.size();
        AddNodes(picture);
        AddEdges(picture);
        return picture;
    }

private:
    /// An answer only holds the joins that it mentions. Those between shortcuts and what they
    /// stand for are numbered by request, so their ends tell whether one is known already.
    void AddCandidateJoins()
    {
        const std::set<amd_id> nodes(mAnswer.candidateNodes.begin(), mAnswer.candidateNodes.end());
        const std::set<amd_id> joins(mAnswer.candidateJoins.begin(), mAnswer.candidateJoins.end());
        std::set<std::pair<amd_id, amd_id>> known;
        for (const auto& [id, join] : mJoins)
            known.emplace(join.left, join.right);
        for (const ModelJoin& checked : mModel.GetJoins()) {
            AnswerJoin join = ToAnswerJoin(mModel, checked);
            if (join.id.classCode == IdClassShortcutJoin) {
                if (nodes.count(join.left) == 0 || nodes.count(join.right) == 0 ||
                    known.count({join.left, join.right}) > 0)
                    continue;
                // Apart from the request's own numbers.
                join.id.domain = -1;
            } else if (joins.count(join.id) == 0)
                continue;
            mJoins.emplace(join.id, join);
        }
    }

    void MarkAsked()
    {
        for (const Ids* const list :
             {&mAnswer.terminals, &mAnswer.secondSet, &mAnswer.joinedSubjects})
            mTouched.insert(list->begin(), list->end());
        mAsked.insert(mAnswer.terminals.begin(), mAnswer.terminals.end());
        mAsked.insert(mAnswer.secondSet.begin(), mAnswer.secondSet.end());
    }

    void MarkPaths()
    {
        for (std::size_t i = 0; i < mPaths.size(); ++i) {
            const auto role = i == 0 ? PictureEdge::ERole::Chosen : PictureEdge::ERole::Alternative;
            for (const amd_id& id : mPaths[i]) {
                const AnswerJoin* const join = mAnswer.FindJoin(id);
                if (join == nullptr)
                    continue;
                mRoles.emplace(id, role);
                mTouched.insert(join->left);
                mTouched.insert(join->right);
                if (i == 0)
                    mOnPath.insert({join->left, join->right});
            }
        }
    }

    /// Alternatives that cost more are not marked, but what they pass is drawn.
    void TouchAlternatives()
    {
        const std::size_t count = mLimits.alternatives.CountShown(mAnswer.alternatives.size());
        for (std::size_t i = 0; i < count; ++i) {
            for (const amd_id& id : mAnswer.alternatives[i].joins) {
                if (const AnswerJoin* const join = mAnswer.FindJoin(id))
                    mTouched.insert({join->left, join->right});
            }
        }
    }

    /// Takes all subjects of a small graph, else those touched and their nearest neighbours, those
    /// with most joins to them first.
    void ChooseSubjects()
    {
        if (mAnswer.candidateNodes.size() <= mLimits.wholeGraph) {
            mDrawn.insert(mAnswer.candidateNodes.begin(), mAnswer.candidateNodes.end());
            mDrawn.insert(mTouched.begin(), mTouched.end());
            return;
        }
        std::map<amd_id, int> contacts;
        for (const auto& [id, join] : mJoins) {
            const bool leftIsTouched = mTouched.count(join.left) > 0;
            if (leftIsTouched != (mTouched.count(join.right) > 0))
                --contacts[leftIsTouched ? join.right : join.left];
        }
        std::vector<std::pair<int, amd_id>> neighbours;
        neighbours.reserve(contacts.size());
        for (const auto& [id, count] : contacts)
            neighbours.emplace_back(count, id);
        std::sort(neighbours.begin(), neighbours.end());
        neighbours.resize(std::min(neighbours.size(), mLimits.neighbours));
        mDrawn = mTouched;
        for (const auto& [count, id] : neighbours)
            mDrawn.insert(id);
    }

    void AddNodes(Picture& picture)
    {
        FactMarks marks;
        for (const auto& [id, join] : mJoins)
            marks.Add(join);
        for (const amd_id& id : mDrawn) {
            PictureNode node;
            node.id = id;
            node.name = NameOf(id);
            node.kind = marks.KindOf(id);
            if (node.kind == PictureNode::EKind::Shortcut)
                node.target = NameOf(mModel.GetModel().GetTarget(id));
            if (mAsked.count(id) > 0)
                node.role = PictureNode::ERole::Asked;
            else if (mOnPath.count(id) > 0)
                node.role = PictureNode::ERole::OnPath;
            mPositions.emplace(id, picture.nodes.size());
            picture.nodes.push_back(std::move(node));
        }
    }

    [[nodiscard]] std::string NameOf(const amd_id& subject) const
    {
        return mAnswer.subjects.count(subject) > 0 ? mAnswer.NameOf(subject)
                                                   : mModel.NameOf(subject);
    }

    /// Beside the answer, all joins between two subjects are one line, and a join of a subject
    /// with itself is none: they would only hide the answer.
    void AddEdges(Picture& picture) const
    {
        std::map<std::pair<amd_id, amd_id>, std::size_t> lines;
        for (const auto& [id, join] : mJoins) {
            const auto role = mRoles.find(id);
            if (mDrawn.count(join.left) == 0 || mDrawn.count(join.right) == 0)
                continue;
            if (role == mRoles.end()) {
                // The names of two shortcuts tell already what they stand for.
                const bool joinsShortcuts = join.id.classCode == IdClassShortcutJoin &&
                                            join.left.classCode == join.right.classCode;
                if (join.left == join.right || joinsShortcuts)
                    continue;
                const auto [line, isNew] =
                    lines.emplace(std::minmax(join.left, join.right), picture.edges.size());
                if (!isNew) {
                    ++picture.edges[line->second].joins;
                    continue;
                }
            }
            picture.edges.push_back(MakePictureEdge(join, mPositions));
            if (role != mRoles.end())
                picture.edges.back().role = role->second;
        }
    }

    ModelGraph mModel;
    const Answer& mAnswer;
    const PictureLimits& mLimits;
    std::vector<Ids> mPaths;
    /// The joins of the candidate graph.
    std::map<amd_id, AnswerJoin> mJoins;
    std::set<amd_id> mAsked;
    std::set<amd_id> mTouched;
    std::set<amd_id> mOnPath;
    std::set<amd_id> mDrawn;
    std::map<amd_id, PictureEdge::ERole> mRoles;
    std::map<amd_id, std::size_t> mPositions;
};

} // namespace

std::vector<Ids> ListShownPaths(const Answer& answer, ListLimit limit)
{
    std::vector<Ids> paths;
    if (!answer.path.empty())
        paths.push_back(answer.path);
    const auto add = [&paths, limit](const Ids& path) {
        if (limit.Shows(paths.size()) && std::find(paths.begin(), paths.end(), path) == paths.end())
            paths.push_back(path);
    };
    for (const Ids& path : answer.bestPaths)
        add(path);
    if (answer.chosen && *answer.chosen < answer.alternatives.size()) {
        const int weight = answer.alternatives[*answer.chosen].weight;
        for (const Alternative& alternative : answer.alternatives) {
            if (alternative.weight == weight)
                add(alternative.joins);
        }
    }
    return paths;
}

Picture DrawAnswer(const ToolModel& model, const Answer& answer, const PictureLimits& limits)
{
    return AnswerDrawing(model, answer, limits).Draw();
}

} // namespace qe::tool
