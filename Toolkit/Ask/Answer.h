#ifndef TOOLKIT_ASK_ANSWER_H
#define TOOLKIT_ASK_ANSWER_H

#include "AQE_Governors.h"
#include "AQE_I_Refiner.h"
#include "BMT_I_Association.h"
#include "Source/Rules/PathMeasure.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class ORVMessage;

namespace qe::tool {

/// One query subject or shortcut that an answer mentions.
struct AnswerSubject
{
    amd_id id;
    /// The name, with as many of its parents as it takes to name nothing else.
    std::string name{};
    /// What a shortcut finally stands for; a query subject stands for itself.
    amd_id target;
};

/// One join that an answer mentions.
struct AnswerJoin
{
    amd_id id;
    /// Empty for the joins between shortcuts and what they stand for.
    std::string name{};
    amd_id left;
    amd_id right;
    std::string condition{};
    BMT_I_Association::CardinalityRange leftCardinality{};
    BMT_I_Association::CardinalityRange rightCardinality{};
    /// What it weighs in the graph that was searched: by its kind, or by being favoured, required
    /// or avoided.
    int weight = 0;
    /// Whether its "many" end is a detail of its other end, a fact: see DetailRule.
    bool leadsFromDetail = false;
};

/// Returns the join that was read.
[[nodiscard]] AnswerJoin ToAnswerJoin(const AQE_I_Refiner::QEjoinInfo& info);

/// One of the candidate paths, with what the ranking compares. Its figures are read off the list of
/// ranking criteria.
struct Alternative : PathMeasure
{
    std::vector<amd_id> joins{};
    /// 100 for weight 0, 0 for the heaviest; nothing for what was not ranked.
    std::optional<int> rank{};
};

/// What tells the chosen path from the next best is named as output shows it: by the name of a
/// ranking criterion, or by one of these.
namespace decision {

/// There is no path.
inline constexpr std::string_view kNone;
inline constexpr std::string_view kOnlyCandidate = "only candidate";
/// Equally good; the names of its joins come first.
inline constexpr std::string_view kJoinNames = "join names";
/// Equally good, with the same join names; it was found first.
inline constexpr std::string_view kOrder = "order";
/// Among equally cheap ones, the keys speak for it.
inline constexpr std::string_view kKeys = "keys";
/// The model prefers a join of it.
inline constexpr std::string_view kModel = "preferred in the model";
/// The selector's own rule.
inline constexpr std::string_view kSelector = "selector";

} // namespace decision

/// An equally cheap candidate, and what would make the refiner take it.
struct Turn
{
    /// The position of the candidate.
    std::size_t alternative = 0;
    /// The names of joins: favouring all of them makes it the only cheapest candidate. Empty when
    /// only requiring them does.
    std::vector<std::string> favoured{};
    std::vector<std::string> required{};
};

/// Why another path might have been answered as well.
struct Ambiguity
{
    /// The candidates of least weight.
    std::size_t equallyCheap = 0;
    /// How many there are in all when not all were listed: a number, perhaps behind "at least";
    /// "more" when that is not known. Else empty.
    std::string total{};
    /// Whether the search ended before it was certain that no path is cheaper.
    bool isUnproven = false;
    /// Nothing that a user would call a reason decided: the names of joins, or their order.
    bool isArbitrary = false;
    /// For the next candidates.
    std::vector<Turn> turns{};

    [[nodiscard]] bool IsCut() const { return !total.empty() || isUnproven; }
};

/// A message that the request carries back to its user.
struct AnswerMessage
{
    std::uint32_t number = 0;
    std::string text{};
};

[[nodiscard]] AnswerMessage ToAnswerMessage(const ORVMessage& message);

/// A decision of the model that holds for the question, by names.
struct AnswerDecision
{
    /// Without subjects it holds for all questions.
    std::vector<std::string> subjects{};
    /// Names that a NameResolver resolves to the joins.
    std::vector<std::string> preferred{};
    std::vector<std::string> avoided{};
    /// May be empty.
    std::string reason{};
};

/// How the library failed.
struct AnswerError
{
    enum class EKind : std::uint8_t
    {
        /// A failure that the library reports to users, with its messages.
        Reported,
        /// A broken invariant, or what something else raised.
        Internal,
    };

    EKind kind = EKind::Reported;
    int severity = 0;
    int code = 0;
    std::vector<AnswerMessage> messages{};
    /// One line with everything.
    std::string text{};
};

/// Which subjects cannot be connected.
struct Separation
{
    /// The named subjects, those that can be connected to each other together. One group, or none
    /// for fewer than two subjects, means that all can be connected.
    std::vector<std::vector<amd_id>> groups{};
    /// One subject of each group: joining these would connect all, with the fewest joins. Empty
    /// when all can be connected.
    std::vector<amd_id> bridge{};
};

/// What the refiner answered to one question. Everything that is mentioned is in `subjects` and
/// `joinsById`.
struct Answer
{
    std::map<amd_id, AnswerSubject> subjects{};
    std::map<amd_id, AnswerJoin> joinsById{};

    /// The question's names, resolved.
    std::vector<amd_id> terminals{};
    std::vector<amd_id> secondSet{};
    /// The graph that was searched: also the joins to what shortcuts stand for.
    std::vector<amd_id> candidateNodes{};
    std::vector<amd_id> candidateJoins{};
    AQE_Governors governors{};

    bool connected = false;
    Separation separation{};
    /// The chosen path, or the joins of the tree, in order.
    std::vector<amd_id> path{};
    /// The weight of the path as it was ranked; nothing when there is none or it was not weighed.
    std::optional<int> weight{};
    /// The candidates, best first; a single one too. Several that were put before the selector are
    /// ranked; the best paths, which nobody chooses among, stand in the refiner's order.
    std::vector<Alternative> alternatives{};
    std::optional<std::size_t> chosen{};
    /// The name of a ranking criterion, or one of namespace decision.
    std::string_view criterion = decision::kNone;
    /// Nothing when there was only one path to answer.
    std::optional<Ambiguity> ambiguity{};
    std::vector<std::vector<amd_id>> bestPaths{};
    /// Between two sets: the subjects at the ends of the path, or of each of the best paths.
    std::vector<std::pair<amd_id, amd_id>> endPairs{};
    std::vector<amd_id> joinedSubjects{};
    /// Main-object selector: the main object of the chosen path; else the empty id.
    amd_id mainObject;

    /// The decisions of the model that the question was asked with.
    std::vector<AnswerDecision> decisions{};
    std::vector<AnswerMessage> warnings{};
    /// What the library logged for its users, such as that a list was cut.
    std::vector<std::string> notices{};
    std::optional<AnswerError> error{};

    /// Returns the subject's name, or the id's text when the answer does not know it.
    [[nodiscard]] std::string NameOf(const amd_id& subject) const;
    /// Returns the join, or null when the answer does not mention it.
    [[nodiscard]] const AnswerJoin* FindJoin(const amd_id& join) const;
};

/// Returns the kind of a join: "relationship", "relationship shortcut", "second-kind relationship",
/// "query join" or "shortcut join".
[[nodiscard]] std::string_view JoinKindTitle(const amd_id& join);

/// Returns a cardinality as models write it, such as "1..n"; "?" for a bound that is not known.
[[nodiscard]] std::string ToText(const BMT_I_Association::CardinalityRange& range);

} // namespace qe::tool

#endif
