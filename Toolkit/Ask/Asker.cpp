#include "Toolkit/Ask/Asker.h"

#include "Engine/Model/Model.h"
#include "HBNException.h"
#include "MainObjectPathSelector.h"
#include "Toolkit/Ask/FunctionSelector.h"
#include "Toolkit/Ask/KeyChoice.h"
#include "Toolkit/Ask/LogNotices.h"
#include "Toolkit/Ask/PathMeasure.h"
#include "Toolkit/Ask/Request.h"
#include "Toolkit/Ask/SubjectGroups.h"
#include "Toolkit/Ask/SubjectName.h"
#include "Toolkit/Model/ToolModel.h"

#include <algorithm>
#include <stdexcept>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;
using Descriptors = FunctionSelector::Descriptors;

AnswerMessage ToAnswerMessage(const ORVMessage& message)
{
    return {message.GetNumber(), message.GetText().ToStdString()};
}

AnswerError ToAnswerError(const HBNException& exception)
{
    AnswerError error{AnswerError::EKind::Reported,
                      exception.GetSeverity(),
                      exception.GetCode(),
                      {},
                      exception.what()};
    for (const HBNMessage& message : exception.GetMessages())
        error.messages.push_back(ToAnswerMessage(message));
    return error;
}

/// One question on its way through the refiner.
class Asking
{
public:
    Asking(const ToolModel& model, const Question& question)
        : mModel(*model.model),
          mQuestion(question),
          mResolved(ResolveQuestion(mModel, question)),
          mRequest(model, question, mResolved)
    {}

    Answer Run();

private:
    void RunOperation();
    void FindPath();
    void FindBestPaths();
    void FindPathBetween();
    void FindBestPathsBetween();
    void FindTreeJoins();

    /// Notes the ranked candidates, and gives the choice of the question's selector.
    std::uint32_t Select(const Descriptors& descriptors);
    std::uint32_t SelectByMainObject(const Descriptors& descriptors);
    /// Notes a path that was the only candidate, unless the selector saw several.
    void NoteOnlyCandidate();
    void NoteBestPaths();
    void NoteWeight();
    void NoteSeparation();
    void NoteCandidateGraph();
    [[nodiscard]] bool Connects(const Ids& path);

    void Mention(const amd_id& join);
    void Mention(const Ids& joins);
    void MentionSubject(const amd_id& subject);

    const model::Model& mModel;
    const Question& mQuestion;
    ResolvedQuestion mResolved;
    Request mRequest;
    Answer mAnswer;
};

Answer Asking::Run()
{
    const LogNotices notices;
    mAnswer.terminals = mResolved.subjects;
    mAnswer.secondSet = mResolved.secondSet;
    mAnswer.governors = mRequest.GetGovernors();
    try {
        NoteCandidateGraph();
        RunOperation();
    } catch (const HBNException& exception) {
        mAnswer.error = ToAnswerError(exception);
    } catch (const ORVThrowable& failure) {
        mAnswer.error = AnswerError{AnswerError::EKind::Internal, 0, 0, {}, failure.what()};
    }
    NoteSeparation();
    for (const AQE_RequestContext::UserMessage& message : mRequest.GetContext().GetUserMessages())
        mAnswer.warnings.push_back(ToAnswerMessage(message.message));
    mAnswer.notices = notices.Get();
    return std::move(mAnswer);
}

void Asking::RunOperation()
{
    switch (mQuestion.operation) {
    case EOperation::Path:
        return FindPath();
    case EOperation::BestPaths:
        return FindBestPaths();
    case EOperation::JoinedSubjects:
        mRequest.MakeRefiner(nullptr, mQuestion.ranking)
            ->GetJoinedQuerySubjects(mResolved.subjects, mResolved.nodes, mResolved.joins,
                                     mAnswer.joinedSubjects);
        return;
    case EOperation::PathBetween:
        return FindPathBetween();
    case EOperation::BestPathsBetween:
        return FindBestPathsBetween();
    case EOperation::TreeJoins:
        return FindTreeJoins();
    }
}

void Asking::FindPath()
{
    FunctionSelector selector([this](const Descriptors& descriptors) { //
        return Select(descriptors);
    });
    mRequest.MakeRefiner(&selector, mQuestion.ranking)
        ->ComputeJoinPath(mResolved.subjects, mResolved.favouredJoins, mResolved.requiredJoins,
                          mResolved.nodes, mResolved.joins, mResolved.favouredSubjects,
                          mAnswer.path);
    NoteOnlyCandidate();
    NoteWeight();
    mAnswer.connected = Connects(mAnswer.path);
}

void Asking::FindBestPaths()
{
    static_cast<void>(mRequest.MakeRefiner(nullptr, mQuestion.ranking)
                          ->ComputeBestJoinPaths(
                              mResolved.subjects, mResolved.favouredJoins, mResolved.requiredJoins,
                              mResolved.nodes, mResolved.joins, mAnswer.bestPaths,
                              mResolved.avoidedJoins, mResolved.favouredSubjects));
    NoteBestPaths();
    mAnswer.connected = Connects(mAnswer.bestPaths.empty() ? Ids() : mAnswer.bestPaths.front());
}

void Asking::FindPathBetween()
{
    FunctionSelector selector([this](const Descriptors& descriptors) { //
        return Select(descriptors);
    });
    int weight = -1;
    Ids endPair;
    mRequest.MakeRefiner(&selector, mQuestion.ranking)
        ->ComputeJoinPathBetween(mResolved.subjects, mResolved.avoidedJoins, mResolved.secondSet,
                                 {}, mResolved.favouredJoins, mResolved.requiredJoins,
                                 mResolved.nodes, mResolved.joins, mAnswer.path, weight, endPair);
    if (endPair.size() == 2)
        mAnswer.endPairs.emplace_back(endPair[0], endPair[1]);
    NoteOnlyCandidate();
    if (!mAnswer.path.empty())
        mAnswer.weight = weight;
    mAnswer.connected = !mAnswer.path.empty();
}

void Asking::FindBestPathsBetween()
{
    int weight = -1;
    mRequest.MakeRefiner(nullptr, mQuestion.ranking)
        ->ComputeBestJoinPathsBetween(mResolved.subjects, mResolved.avoidedJoins,
                                      mResolved.secondSet, {}, mResolved.favouredJoins,
                                      mResolved.requiredJoins, mResolved.nodes, mResolved.joins,
                                      mAnswer.bestPaths, weight, mAnswer.endPairs);
    NoteBestPaths();
    mAnswer.connected = !mAnswer.bestPaths.empty();
    if (mAnswer.connected)
        mAnswer.weight = weight;
}

void Asking::FindTreeJoins()
{
    static_cast<void>(mRequest.MakeRefiner(nullptr, mQuestion.ranking)
                          ->GetJoinTreeJoins(&mRequest.GetGateway(), mResolved.subjects,
                                             mResolved.favouredJoins, mResolved.requiredJoins,
                                             mResolved.nodes, mResolved.joins,
                                             &mRequest.GetGovernors(), &mRequest.GetContext(),
                                             &mResolved.avoidedJoins, mAnswer.path));
    NoteOnlyCandidate();
    NoteWeight();
    mAnswer.connected = Connects(mAnswer.path);
}

std::uint32_t Asking::Select(const Descriptors& descriptors)
{
    for (const auto& descriptor : descriptors) {
        Ids path;
        descriptor->GetJoinPath(path);
        Mention(path);
        Alternative alternative = MeasurePath(mAnswer, path);
        alternative.weight = descriptor->GetComputedWeight();
        alternative.rank = descriptor->GetRank();
        mAnswer.alternatives.push_back(std::move(alternative));
    }
    RankingSwitches ranking = mQuestion.ranking;
    // Between two sets how straight a path is plays no part.
    ranking.useStraightestPath &= mQuestion.operation == EOperation::Path;
    mAnswer.criterion = FindDecision(mAnswer, ranking);
    // Between two sets the ranking has no weights of its own and counts -1 for each join.
    for (Alternative& alternative : mAnswer.alternatives) {
        if (alternative.weight < 0)
            alternative.weight = MeasurePath(mAnswer, alternative.joins).weight;
    }

    std::uint32_t choice = 0;
    bool isKeyChoice = false;
    if (mQuestion.selector.kind == ESelector::Keys) {
        const KeyChoice byKeys = ChooseByKeys(mAnswer);
        choice = static_cast<std::uint32_t>(byKeys.position);
        isKeyChoice = byKeys.isClear || choice != 0;
    } else if (mQuestion.selector.kind == ESelector::MainObject)
        choice = SelectByMainObject(descriptors);
    else if (mQuestion.selector.kind == ESelector::Ask)
        choice = static_cast<std::uint32_t>(mQuestion.selector.choose(mAnswer));
    if (choice < mAnswer.alternatives.size())
        mAnswer.chosen = choice;
    if (isKeyChoice)
        mAnswer.criterion = decision::kKeys;
    else if (choice != 0 || mQuestion.selector.kind == ESelector::Ask)
        mAnswer.criterion = decision::kSelector;
    return choice;
}

std::uint32_t Asking::SelectByMainObject(const Descriptors& descriptors)
{
    MainObjectPathSelector selector(
        &mRequest.GetGateway(), &mRequest.GetContext(), mResolved.subjects,
        {mQuestion.selector.checkOptional, mQuestion.selector.subjectsAreCandidates});
    const std::uint32_t choice = selector.SelectPath(descriptors);
    mAnswer.mainObject = selector.GetMainObject();
    if (mAnswer.mainObject.IsValid())
        MentionSubject(mAnswer.mainObject);
    return choice;
}

void Asking::NoteOnlyCandidate()
{
    Mention(mAnswer.path);
    if (!mAnswer.alternatives.empty() || mAnswer.path.empty())
        return;
    mAnswer.alternatives.push_back(MeasurePath(mAnswer, mAnswer.path));
    mAnswer.chosen = 0;
    mAnswer.criterion = decision::kOnlyCandidate;
}

void Asking::NoteBestPaths()
{
    for (const Ids& path : mAnswer.bestPaths) {
        Mention(path);
        mAnswer.alternatives.push_back(MeasurePath(mAnswer, path));
    }
}

void Asking::NoteWeight()
{
    if (mAnswer.chosen && !mAnswer.path.empty())
        mAnswer.weight = mAnswer.alternatives[*mAnswer.chosen].weight;
}

void Asking::NoteSeparation()
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
    if (mQuestion.operation == EOperation::JoinedSubjects)
        mAnswer.connected = mAnswer.separation.groups.size() < 2 && !mAnswer.error;
    for (const amd_id& subject : subjects)
        MentionSubject(subject);
    for (const amd_id& subject : mAnswer.joinedSubjects)
        MentionSubject(subject);
}

void Asking::NoteCandidateGraph()
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
        Mention(info.joinId);
    }
}

bool Asking::Connects(const Ids& path)
{
    SubjectGroups groups;
    for (const amd_id& id : path) {
        if (const AnswerJoin* const join = mAnswer.FindJoin(id))
            groups.AddJoin(join->left, join->right);
    }
    return groups.Split(mResolved.subjects).size() < 2;
}

void Asking::Mention(const amd_id& join)
{
    if (mAnswer.joinsById.count(join) != 0)
        return;
    const auto info = mRequest.ReadJoin(join);
    if (!info)
        return;
    mAnswer.joinsById.emplace(
        join, AnswerJoin{join, info->name.ToStdString(), info->leftQuerySubject,
                         info->rightQuerySubject, info->expression.ToStdString(),
                         info->leftCardinality, info->rightCardinality, info->weight});
    MentionSubject(info->leftQuerySubject);
    MentionSubject(info->rightQuerySubject);
}

void Asking::Mention(const Ids& joins)
{
    for (const amd_id& join : joins)
        Mention(join);
}

void Asking::MentionSubject(const amd_id& subject)
{
    if (mAnswer.subjects.count(subject) != 0)
        return;
    if (mModel.Find(subject) != nullptr)
        mAnswer.subjects.emplace(subject, AnswerSubject{subject, SubjectName(mModel, subject),
                                                        mModel.GetTarget(subject)});
}

} // namespace

Answer Ask(const ToolModel& model, const Question& question)
{
    if (question.selector.kind == ESelector::Ask && !question.selector.choose)
        throw std::invalid_argument("The question has no function that chooses");
    return Asking(model, question).Run();
}

} // namespace qe::tool
