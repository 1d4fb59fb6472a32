#ifndef TOOLKIT_ASK_ANSWERRECORDER_H
#define TOOLKIT_ASK_ANSWERRECORDER_H

#include "Source/Rules/RankingCriteria.h"
#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"
#include "amd_id.h"

#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// Returns the path measured by all criteria of the ranking: its weight is the sum of those of its
/// joins, and it has no rank. Joins that the answer does not know count for nothing.
[[nodiscard]] Alternative MeasurePath(const Answer& answer, const std::vector<amd_id>& path);

/// Returns what made the first of the ranked alternatives the first: the name of the first
/// criterion that is on and in which the next best is worse, or else one of namespace decision.
[[nodiscard]] std::string_view FindDecision(const Answer& answer, const RankingSwitches& switches);

} // namespace qe::tool

namespace qe::model {
class Model;
}

namespace qe::tool {

class DetailRule;
class Request;
struct ResolvedQuestion;

/// Records in an answer what a request finds, so that everything the answer mentions is in it.
class AnswerRecorder
{
public:
    /// Refers to everything that it is given.
    AnswerRecorder(const model::Model& model, const DetailRule& details,
                   const ResolvedQuestion& resolved, Request& request, Answer& answer);

    /// Records the join and its ends, read from the request; nothing when it cannot be read.
    void RecordJoin(const amd_id& join);
    void RecordJoins(const std::vector<amd_id>& joins);
    void RecordSubject(const amd_id& subject);

    /// Records the names of the question, the governors in force and the graph that is searched.
    void RecordCandidateGraph();
    /// Records the decisions of the model that hold for the question.
    void RecordDecisions();
    /// Records that one of them decided, where the path takes a join that it prefers and nothing
    /// else was left to decide.
    void RecordPreference();
    /// Records the path of the answer as a candidate, unless the selector saw candidates.
    void RecordOnlyCandidate();
    /// Records each of the best paths as a candidate.
    void RecordBestPaths();
    /// Records the weight that the path was ranked with.
    void RecordWeight();
    /// Records, for subjects that are not connected, which of them can be. Of joined subjects this
    /// decides whether they are connected.
    void RecordSeparation(EOperation operation);
    /// Records what the request and the library have to say to the user, and then which other
    /// candidates there were.
    void RecordMessages(std::vector<std::string> notices);

    /// Returns whether the joins connect the subjects of the question.
    [[nodiscard]] bool Connects(const std::vector<amd_id>& joins) const;

private:
    const model::Model& mModel;
    const DetailRule& mDetails;
    const ResolvedQuestion& mResolved;
    Request& mRequest;
    Answer& mAnswer;
};

} // namespace qe::tool

#endif
