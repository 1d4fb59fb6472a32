#include "Tools/Draw/AnswerPicture.h"

#include "IdClass.h"
#include "Tools/Ask/Answer.h"

#include <algorithm>
#include <set>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;

class AnswerDrawing
{
public:
    AnswerDrawing(const Answer& answer, const PictureLimits& limits)
        : mAnswer(answer), mLimits(limits), mPaths(ListShownPaths(answer, limits.alternatives))
    {}

    Picture Draw()
    {
        MarkAsked();
        MarkPaths();
        ChooseSubjects();
        Picture picture;
        picture.subjects = mAnswer.candidateNodes.size();
        AddNodes(picture);
        AddEdges(picture);
        return picture;
    }

private:
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
        for (const auto& [id, join] : mAnswer.joinsById) {
            const bool leftIsTouched = mTouched.count(join.left) > 0;
            if (leftIsTouched != (mTouched.count(join.right) > 0))
                --contacts[leftIsTouched ? join.right : join.left];
        }
        std::vector<std::pair<int, amd_id>> neighbours;
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
        for (const auto& [id, join] : mAnswer.joinsById)
            marks.Add(join);
        for (const amd_id& id : mDrawn) {
            PictureNode node;
            node.id = id;
            node.name = mAnswer.NameOf(id);
            node.kind = marks.KindOf(id);
            if (node.kind == PictureNode::EKind::Shortcut)
                node.target = TargetOf(id);
            if (mAsked.count(id) > 0)
                node.role = PictureNode::ERole::Asked;
            else if (mOnPath.count(id) > 0)
                node.role = PictureNode::ERole::OnPath;
            mPositions.emplace(id, picture.nodes.size());
            picture.nodes.push_back(std::move(node));
        }
    }

    [[nodiscard]] std::string TargetOf(const amd_id& shortcut) const
    {
        const auto found = mAnswer.subjects.find(shortcut);
        return found == mAnswer.subjects.end() ? "" : mAnswer.NameOf(found->second.target);
    }

    void AddEdges(Picture& picture) const
    {
        for (const auto& [id, join] : mAnswer.joinsById) {
            const auto role = mRoles.find(id);
            if (mDrawn.count(join.left) == 0 || mDrawn.count(join.right) == 0)
                continue;
            // The shape of a shortcut tells already what it shares with its neighbours.
            const bool joinsShortcuts = join.id.classCode == IdClassShortcutJoin &&
                                        join.left.classCode == join.right.classCode;
            if (joinsShortcuts && role == mRoles.end())
                continue;
            PictureEdge edge = MakePictureEdge(join, mPositions);
            if (role != mRoles.end())
                edge.role = role->second;
            picture.edges.push_back(std::move(edge));
        }
    }

    const Answer& mAnswer;
    const PictureLimits& mLimits;
    std::vector<Ids> mPaths;
    std::set<amd_id> mAsked;
    std::set<amd_id> mTouched;
    std::set<amd_id> mOnPath;
    std::set<amd_id> mDrawn;
    std::map<amd_id, PictureEdge::ERole> mRoles;
    std::map<amd_id, std::size_t> mPositions;
};

} // namespace

std::vector<Ids> ListShownPaths(const Answer& answer, std::size_t limit)
{
    std::vector<Ids> paths;
    if (!answer.path.empty())
        paths.push_back(answer.path);
    const auto add = [&paths, limit](const Ids& path) {
        if (paths.size() <= limit && std::find(paths.begin(), paths.end(), path) == paths.end())
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

Picture DrawAnswer(const Answer& answer, const PictureLimits& limits)
{
    return AnswerDrawing(answer, limits).Draw();
}

} // namespace qe::tool
