#include "Toolkit/Ask/Asker.h"

#include "AQE_I_JoinPathDescriptor.h"
#include "AQE_I_PathSelector.h"
#include "AQE_LogFile.h"
#include "Engine/Model/Model.h"
#include "HBNException.h"
#include "MainObjectPathSelector.h"
#include "Toolkit/Ask/AnswerRecorder.h"
#include "Toolkit/Ask/DetailRule.h"
#include "Toolkit/Ask/KeyChoice.h"
#include "Toolkit/Ask/LogNotices.h"
#include "Toolkit/Ask/ModelDecisions.h"
#include "Toolkit/Ask/PathAdvisor.h"
#include "Toolkit/Ask/Request.h"
#include "Toolkit/Ask/RequestBasis.h"
#include "Toolkit/Ask/ResolvedQuestion.h"
#include "Toolkit/Model/ToolModel.h"
#include "Toolkit/Text/DisplayText.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;
using Descriptors = std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>;

AnswerError ToAnswerError(const HBNException& exception)
{
    AnswerError error{.kind = AnswerError::EKind::Reported,
                      .severity = exception.GetSeverity(),
                      .code = exception.GetCode()};
    for (const HBNMessage& message : exception.GetMessages())
        error.messages.push_back(ToAnswerMessage(message));
    // What an exception says of itself is meant for the log.
    error.text = error.messages.empty() ? exception.what()
                                        : JoinTexts(error.messages, &AnswerMessage::text, " ");
    return error;
}

/// Leaves the choice to a function.
class FunctionSelector final : public AQE_I_PathSelector
{
public:
    using Function = std::function<std::uint32_t(const Descriptors&)>;

    explicit FunctionSelector(Function function) : mFunction(std::move(function)) {}

    std::uint32_t SelectPath(const Descriptors& descriptors) override
    {
        return mFunction(descriptors);
    }
    std::uint32_t SelectAlternative(const std::vector<Ids>& /*alternatives*/) override { return 0; }

private:
    Function mFunction;
};

/// One run of a question through the refiner.
class QuestionRun
{
public:
    /// Refers to everything that it is given.
    QuestionRun(const ToolModel& model, const DetailRule& details, const Question& question,
                const ResolvedQuestion& resolved, RequestBasis& basis)
        : mModel(*model.model),
          mAdvisor(model.advisor.get()),
          mQuestion(question),
          mResolved(resolved),
          mRanking(question.ranking),
          mRequest(basis, resolved),
          mRecorder(*model.model, details, mResolved, mRequest, mAnswer)
    {
        // Between two sets how straight a path is plays no part.
        mRanking.useStraightestPath &= question.operation == EOperation::Path;
    }
    QuestionRun(const QuestionRun&) = delete;
    QuestionRun& operator=(const QuestionRun&) = delete;

    Answer Run();

private:
    void RunOperation();
    void FindPath();
    void FindBestPaths();
    void FindJoinedSubjects();
    void FindPathBetween();
    void FindBestPathsBetween();
    void FindTreeJoins();

    /// Returns a selector that records the candidates and asks for the choice of the question's.
    [[nodiscard]] FunctionSelector MakeSelector();
    [[nodiscard]] AUT_RefPtr<AQE_I_Refiner> MakeRefiner(AQE_I_PathSelector* selector);
    std::uint32_t Select(const Descriptors& descriptors);
    void RecordCandidates(const Descriptors& descriptors);
    std::uint32_t SelectByKeys();
    std::uint32_t SelectByMainObject(const Descriptors& descriptors);

    const model::Model& mModel;
    /// May be null.
    const PathAdvisor* mAdvisor;
    const Question& mQuestion;
    const ResolvedQuestion& mResolved;
    /// The criteria that this operation ranks by.
    RankingSwitches mRanking;
    Request mRequest;
    Answer mAnswer;
    AnswerRecorder mRecorder;
};

Answer QuestionRun::Run()
{
    const LogNotices notices;
    try {
        mRecorder.RecordDecisions();
        mRecorder.RecordCandidateGraph();
        RunOperation();
    } catch (const HBNException& exception) {
        mAnswer.error = ToAnswerError(exception);
    } catch (const ORVThrowable&) {
        // What it says is for those who build the refiner: conditions and places of its code.
        mAnswer.error = AnswerError{.kind = AnswerError::EKind::Internal,
                                    .text = "The refiner met what it takes to be impossible, and "
                                            "gives no answer: please report model and question"};
    }
    mRecorder.RecordPreference();
    mRecorder.RecordSeparation(mQuestion.operation);
    mRecorder.RecordMessages(notices.Get());
    // Who chose himself knows the others.
    if (mQuestion.selector.kind == ESelector::Ask)
        mAnswer.ambiguity.reset();
    return std::move(mAnswer);
}

void QuestionRun::RunOperation()
{
    switch (mQuestion.operation) {
    case EOperation::Path:
        return FindPath();
    case EOperation::BestPaths:
        return FindBestPaths();
    case EOperation::JoinedSubjects:
        return FindJoinedSubjects();
    case EOperation::PathBetween:
        return FindPathBetween();
    case EOperation::BestPathsBetween:
        return FindBestPathsBetween();
    case EOperation::TreeJoins:
        return FindTreeJoins();
    }
}

void QuestionRun::FindPath()
{
    FunctionSelector selector = MakeSelector();
    MakeRefiner(&selector)->ComputeJoinPath(
        mResolved.subjects, mResolved.favouredJoins, mResolved.requiredJoins, mResolved.nodes,
        mResolved.joins, mResolved.favouredSubjects, mAnswer.path);
    mRecorder.RecordOnlyCandidate();
    mRecorder.RecordWeight();
    mAnswer.connected = mRecorder.Connects(mAnswer.path);
}

void QuestionRun::FindBestPaths()
{
    static_cast<void>(MakeRefiner(nullptr)->ComputeBestJoinPaths(
        mResolved.subjects, mResolved.favouredJoins, mResolved.requiredJoins, mResolved.nodes,
        mResolved.joins, mAnswer.bestPaths, mResolved.avoidedJoins, mResolved.favouredSubjects));
    mRecorder.RecordBestPaths();
    mAnswer.connected =
        mRecorder.Connects(mAnswer.bestPaths.empty() ? Ids() : mAnswer.bestPaths.front());
}

void QuestionRun::FindJoinedSubjects()
{
    MakeRefiner(nullptr)->GetJoinedQuerySubjects(mResolved.subjects, mResolved.nodes,
                                                 mResolved.joins, mAnswer.joinedSubjects);
}

void QuestionRun::FindPathBetween()
{
    FunctionSelector selector = MakeSelector();
    int weight = -1;
    Ids endPair;
    MakeRefiner(&selector)->ComputeJoinPathBetween(mResolved.subjects, mResolved.avoidedJoins,
                                                   mResolved.secondSet, {}, mResolved.favouredJoins,
                                                   mResolved.requiredJoins, mResolved.nodes,
                                                   mResolved.joins, mAnswer.path, weight, endPair);
    if (endPair.size() == 2)
        mAnswer.endPairs.emplace_back(endPair[0], endPair[1]);
    mRecorder.RecordOnlyCandidate();
    mAnswer.connected = !mAnswer.path.empty();
    if (mAnswer.connected)
        mAnswer.weight = weight;
}

void QuestionRun::FindBestPathsBetween()
{
    int weight = -1;
    MakeRefiner(nullptr)->ComputeBestJoinPathsBetween(
        mResolved.subjects, mResolved.avoidedJoins, mResolved.secondSet, {},
        mResolved.favouredJoins, mResolved.requiredJoins, mResolved.nodes, mResolved.joins,
        mAnswer.bestPaths, weight, mAnswer.endPairs);
    mRecorder.RecordBestPaths();
    mAnswer.connected = !mAnswer.bestPaths.empty();
    if (mAnswer.connected)
        mAnswer.weight = weight;
}

void QuestionRun::FindTreeJoins()
{
    static_cast<void>(MakeRefiner(nullptr)->GetJoinTreeJoins(
        &mRequest.GetGateway(), mResolved.subjects, mResolved.favouredJoins,
        mResolved.requiredJoins, mResolved.nodes, mResolved.joins, &mRequest.GetGovernors(),
        &mRequest.GetContext(), &mResolved.avoidedJoins, mAnswer.path));
    mRecorder.RecordOnlyCandidate();
    mRecorder.RecordWeight();
    mAnswer.connected = mRecorder.Connects(mAnswer.path);
}

FunctionSelector QuestionRun::MakeSelector()
{
    return FunctionSelector([this](const Descriptors& descriptors) { //
        return Select(descriptors);
    });
}

AUT_RefPtr<AQE_I_Refiner> QuestionRun::MakeRefiner(AQE_I_PathSelector* selector)
{
    return mRequest.MakeRefiner(selector, mQuestion.ranking);
}

std::uint32_t QuestionRun::Select(const Descriptors& descriptors)
{
    RecordCandidates(descriptors);
    std::uint32_t choice = 0;
    switch (mQuestion.selector.kind) {
    case ESelector::First:
        break;
    case ESelector::Keys:
        choice = SelectByKeys();
        break;
    case ESelector::MainObject:
        choice = SelectByMainObject(descriptors);
        break;
    case ESelector::Ask:
        choice = static_cast<std::uint32_t>(mQuestion.selector.choose(mAnswer));
        mAnswer.criterion = decision::kSelector;
        break;
    }
    if (choice < mAnswer.alternatives.size())
        mAnswer.chosen = choice;
    const bool wantsUse =
        mQuestion.selector.explainsHistory || mAnswer.criterion == decision::kPastQueries;
    if (mAdvisor != nullptr && mQuestion.selector.kind == ESelector::Keys && wantsUse)
        mAnswer.pastUse = mAdvisor->FindPastUse(
            mModel, mAnswer, mQuestion.selector.explainsHistory ? EExplain::Yes : EExplain::No);
    return choice;
}

void QuestionRun::RecordCandidates(const Descriptors& descriptors)
{
    for (const auto& descriptor : descriptors) {
        Ids path;
        descriptor->GetJoinPath(path);
        mRecorder.RecordJoins(path);
        Alternative alternative = MeasurePath(mAnswer, path);
        alternative.weight = descriptor->GetComputedWeight();
        alternative.rank = descriptor->GetRank();
        mAnswer.alternatives.push_back(std::move(alternative));
    }
    mAnswer.criterion = FindDecision(mAnswer, mRanking);
    // Between two sets the ranking has no weights of its own and counts -1 for each join.
    for (Alternative& alternative : mAnswer.alternatives) {
        if (alternative.weight < 0)
            alternative.weight = MeasurePath(mAnswer, alternative.joins).weight;
    }
}

std::uint32_t QuestionRun::SelectByKeys()
{
    const PathChoice choice = mAdvisor == nullptr ? ChooseByKeys(mModel, mAnswer, mRanking)
                                                  : mAdvisor->Choose(mModel, mAnswer);
    if (!choice.decidedBy.empty())
        mAnswer.criterion = choice.decidedBy;
    return static_cast<std::uint32_t>(choice.position);
}

std::uint32_t QuestionRun::SelectByMainObject(const Descriptors& descriptors)
{
    MainObjectPathSelector selector(
        &mRequest.GetGateway(), &mRequest.GetContext(), mResolved.subjects,
        {mQuestion.selector.checkOptional, mQuestion.selector.subjectsAreCandidates});
    const std::uint32_t choice = selector.SelectPath(descriptors);
    mAnswer.mainObject = selector.GetMainObject();
    if (mAnswer.mainObject.IsValid())
        mRecorder.RecordSubject(mAnswer.mainObject);
    if (choice != 0)
        mAnswer.criterion = decision::kSelector;
    return choice;
}

} // namespace

Answer Ask(const ToolModel& model, const Question& question)
{
    return Asker(model).Ask(question);
}

namespace {

/// The join cache of a basis keeps the path of each question.
constexpr std::size_t kMostQuestionsOnBasis = 1000;

/// Returns whether somebody reads more of the log than what answers carry with them: then what one
/// question reads must not be missing in the log of the next.
bool IsLogRead()
{
    constexpr int kNoticeLevel = 1;
    return AQE_LogFile({}).GetLogLevel() > kNoticeLevel;
}

} // namespace

Asker::Asker(const ToolModel& model)
    : mModel(model),
      mResolver(std::make_unique<QuestionResolver>(*model.model)),
      mDetails(std::make_unique<DetailRule>(*model.model))
{}

Asker::~Asker() = default;

Answer Asker::Ask(const Question& question)
{
    if (question.selector.kind == ESelector::Ask && !question.selector.choose)
        throw std::invalid_argument("The question has no function that chooses");
    ResolvedQuestion resolved = mResolver->Resolve(question);
    ApplyDecisions(mModel.decisions, question, resolved);
    if (question.operation == EOperation::Path && !resolved.avoidedJoins.empty())
        LeaveOutAvoided(question, resolved);
    std::unique_ptr<RequestBasis> basis = TakeBasis(question, resolved);
    Answer answer = QuestionRun(mModel, *mDetails, question, resolved, *basis).Run();
    if (!answer.error)
        mBasis = std::move(basis);
    return answer;
}

void Asker::LeaveOutAvoided(const Question& question, ResolvedQuestion& resolved) const
{
    Question best = question;
    best.operation = EOperation::BestPaths;
    RequestBasis basis(mModel, best, resolved);
    const Answer answer = QuestionRun(mModel, *mDetails, best, resolved, basis).Run();
    const Ids needed = answer.bestPaths.empty() ? Ids() : answer.bestPaths.front();
    std::set<amd_id> leftOut(resolved.avoidedJoins.begin(), resolved.avoidedJoins.end());
    for (const amd_id& join : needed)
        leftOut.erase(join);
    std::erase_if(resolved.joins,
                  [&leftOut](const amd_id& join) { return leftOut.count(join) > 0; });
    resolved.avoidedJoins.clear();
}

std::unique_ptr<RequestBasis> Asker::TakeBasis(const Question& question,
                                               const ResolvedQuestion& resolved)
{
    std::unique_ptr<RequestBasis> basis = std::move(mBasis);
    const bool fits = basis != nullptr && mQuestionsOnBasis < kMostQuestionsOnBasis &&
                      !IsLogRead() && basis->Fits(mModel, question, resolved);
    if (!fits) {
        basis = std::make_unique<RequestBasis>(mModel, question, resolved);
        mQuestionsOnBasis = 0;
    }
    ++mQuestionsOnBasis;
    return basis;
}

} // namespace qe::tool
