#include "Toolkit/Ask/AnswerRecorder.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Ask/Ambiguity.h"
#include "Toolkit/Ask/DetailRule.h"
#include "Toolkit/Ask/ModelDecisions.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Ask/Request.h"
#include "Toolkit/Ask/ResolvedQuestion.h"
#include "Toolkit/Ask/SubjectGroups.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace qe::tool {
namespace {

/// Reads the joins of paths from an answer. A path whose fact tables cannot be counted goes without
/// their number.
class AnswerJoins : public PathJoinSource
{
public:
    explicit AnswerJoins(const Answer& answer) : mAnswer(answer) {}

    [[nodiscard]] std::optional<PathJoin> ReadPathJoin(const amd_id& id) const override
    {
        const AnswerJoin* const join = mAnswer.FindJoin(id);
        if (join == nullptr)
            return std::nullopt;
        return PathJoin{.ends = {join->left, join->right},
                        .leftCardinality = join->leftCardinality,
                        .rightCardinality = join->rightCardinality};
    }

    void ReportUncountable(EFactJoin /*problem*/) const override {}

private:
    const Answer& mAnswer;
};

std::set<std::string> GetJoinNames(const Answer& answer, const std::vector<amd_id>& path)
{
    const auto lookUpName = [&answer](const amd_id& id) {
        const AnswerJoin* const join = answer.FindJoin(id);
        return join == nullptr ? std::nullopt : std::optional(join->name);
    };
    return GetPathSignature<std::string>(path, lookUpName);
}

} // namespace

Alternative MeasurePath(const Answer& answer, const std::vector<amd_id>& path)
{
    Alternative alternative;
    alternative.joins = path;
    for (const amd_id& id : path) {
        if (const AnswerJoin* const join = answer.FindJoin(id))
            alternative.weight += join->weight;
    }
    MeasureByAll(path, AnswerJoins(answer), alternative);
    return alternative;
}

std::string_view FindDecision(const Answer& answer, const RankingSwitches& switches)
{
    if (answer.alternatives.empty())
        return decision::kNone;
    if (answer.alternatives.size() == 1)
        return decision::kOnlyCandidate;
    const Alternative& best = answer.alternatives[0];
    const Alternative& next = answer.alternatives[1];
    if (const RankingCriterion* const criterion = FindDifference(best, next, switches))
        return criterion->name;
    return GetJoinNames(answer, best.joins) != GetJoinNames(answer, next.joins)
               ? decision::kJoinNames
               : decision::kOrder;
}

namespace {

using Ids = std::vector<amd_id>;

} // namespace

AnswerRecorder::AnswerRecorder(const model::Model& model, const DetailRule& details,
                               const ResolvedQuestion& resolved, Request& request, Answer& answer)
    : mModel(model), mDetails(details), mResolved(resolved), mRequest(request), mAnswer(answer)
{
    mAnswer.terminals = resolved.subjects;
    mAnswer.secondSet = resolved.secondSet;
    mAnswer.governors = request.GetGovernors();
}

void AnswerRecorder::RecordJoin(const amd_id& join)
{
    if (mAnswer.joinsById.count(join) != 0)
        return;
    const auto info = mRequest.ReadJoin(join);
    if (!info)
        return;
    AnswerJoin& recorded = mAnswer.joinsById.emplace(join, ToAnswerJoin(*info)).first->second;
    recorded.leadsFromDetail = mDetails.LeadsFromDetail(recorded);
    RecordSubject(recorded.left);
    RecordSubject(recorded.right);
}

void AnswerRecorder::RecordJoins(const Ids& joins)
{
    for (const amd_id& join : joins)
        RecordJoin(join);
}

void AnswerRecorder::RecordSubject(const amd_id& subject)
{
    if (mAnswer.subjects.count(subject) != 0 || mModel.Find(subject) == nullptr)
        return;
    mAnswer.subjects.emplace(subject, AnswerSubject{.id = subject,
                                                    .name = SubjectName(mModel, subject),
                                                    .target = mModel.GetTarget(subject)});
}

void AnswerRecorder::RecordCandidateGraph()
{
    mAnswer.candidateNodes = mResolved.nodes;
    mAnswer.candidateJoins = mResolved.joins;
    for (const amd_id& join : mResolved.requiredJoins) {
        if (std::find(mResolved.joins.begin(), mResolved.joins.end(), join) ==
            mResolved.joins.end())
            mAnswer.candidateJoins.push_back(join);
    }
    for (const AQE_I_Refiner::QEjoinInfo& info : mRequest.GetShortcutInfo().GetShortcutJoins()) {
        mAnswer.candidateJoins.push_back(info.joinId);
        RecordJoin(info.joinId);
    }
}

void AnswerRecorder::RecordDecisions()
{
    for (const Decision& decision : mResolved.decisions)
        mAnswer.decisions.push_back(ToAnswerDecision(mModel, decision));
}

void AnswerRecorder::RecordPreference()
{
    const bool cameCheapest = mAnswer.criterion == decision::kOnlyCandidate ||
                              mAnswer.criterion == GetRankingCriteria().front().name;
    const auto isTaken = [this](const amd_id& join) {
        return std::find(mAnswer.path.begin(), mAnswer.path.end(), join) != mAnswer.path.end();
    };
    for (const Decision& decision : mResolved.decisions) {
        if (cameCheapest &&
            std::any_of(decision.preferred.begin(), decision.preferred.end(), isTaken))
            mAnswer.criterion = decision::kModel;
    }
}

void AnswerRecorder::RecordOnlyCandidate()
{
    RecordJoins(mAnswer.path);
    if (!mAnswer.alternatives.empty() || mAnswer.path.empty())
        return;
    mAnswer.alternatives.push_back(MeasurePath(mAnswer, mAnswer.path));
    mAnswer.chosen = 0;
    mAnswer.criterion = decision::kOnlyCandidate;
}

void AnswerRecorder::RecordBestPaths()
{
    for (const Ids& path : mAnswer.bestPaths) {
        RecordJoins(path);
        mAnswer.alternatives.push_back(MeasurePath(mAnswer, path));
    }
}

void AnswerRecorder::RecordWeight()
{
    if (mAnswer.chosen && !mAnswer.path.empty())
        mAnswer.weight = mAnswer.alternatives[*mAnswer.chosen].weight;
}

void AnswerRecorder::RecordSeparation(EOperation operation)
{
    Ids subjects = mResolved.subjects;
    subjects.insert(subjects.end(), mResolved.secondSet.begin(), mResolved.secondSet.end());
    SubjectGroups groups;
    if (!mAnswer.connected) {
        for (const amd_id& join : mAnswer.candidateJoins) {
            const AnswerJoin* const known = mAnswer.FindJoin(join);
            if (known != nullptr)
                groups.AddJoin(known->left, known->right);
            else if (const auto* const record = mModel.Find(join))
                groups.AddJoin(record->left, record->right);
        }
        mAnswer.separation = DescribeSeparation(groups.Split(subjects));
    }
    if (operation == EOperation::JoinedSubjects)
        mAnswer.connected = mAnswer.separation.groups.size() < 2 && !mAnswer.error;
    for (const amd_id& subject : subjects)
        RecordSubject(subject);
    for (const amd_id& subject : mAnswer.joinedSubjects)
        RecordSubject(subject);
}

void AnswerRecorder::RecordMessages(std::vector<std::string> notices)
{
    for (const AQE_RequestContext::UserMessage& message : mRequest.GetContext().GetUserMessages())
        mAnswer.warnings.push_back(ToAnswerMessage(message.message));
    mAnswer.notices = std::move(notices);
    if (!mAnswer.error)
        mAnswer.ambiguity = FindAmbiguity(mModel, mAnswer);
}

bool AnswerRecorder::Connects(const Ids& joins) const
{
    SubjectGroups groups;
    for (const amd_id& id : joins) {
        if (const AnswerJoin* const join = mAnswer.FindJoin(id))
            groups.AddJoin(join->left, join->right);
    }
    return groups.Split(mResolved.subjects).size() < 2;
}

} // namespace qe::tool
