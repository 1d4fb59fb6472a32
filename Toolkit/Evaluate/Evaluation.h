#ifndef TOOLKIT_EVALUATE_EVALUATION_H
#define TOOLKIT_EVALUATE_EVALUATION_H

#include "Toolkit/Ask/Question.h"
#include "Toolkit/Evaluate/ModelSource.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

class ModelSource;

/// How an answer compares with the joins that a person wrote.
enum class EComparison : std::uint8_t
{
    /// The chosen path makes the same columns equal.
    Same,
    /// Another one of the paths of least weight does.
    OtherOfEquallyGood,
    /// The model has these joins, but fewer connect the subjects.
    LongerThanNeeded,
    /// The joins are not among those of the model.
    OutsideModel,
    /// The model does not connect the subjects.
    NotConnected,
    /// There is no answer: the request or its model cannot be read, or the library failed.
    Refused,
};

inline constexpr std::size_t kComparisonCount = 6;

/// Returns the name of a comparison as output shows it.
[[nodiscard]] std::string_view ToText(EComparison comparison);

/// How many requests were answered how.
struct Tally
{
    std::array<std::size_t, kComparisonCount> counts{};

    void Add(EComparison comparison) { ++counts[static_cast<std::size_t>(comparison)]; }
    [[nodiscard]] std::size_t Get(EComparison comparison) const
    {
        return counts[static_cast<std::size_t>(comparison)];
    }
    [[nodiscard]] std::size_t CountRequests() const;
    /// Returns the number of those that a person's joins answer, chosen or only among the equally
    /// good ones.
    [[nodiscard]] std::size_t CountEquallyGood() const;
};

/// One request that was not answered the same.
struct Difference
{
    std::size_t line = 0;
    std::string id{};
    EComparison comparison = EComparison::Refused;
    /// What the person joins and the chosen path does not, and the reverse.
    std::vector<NamedPair> onlyWritten{};
    std::vector<NamedPair> onlyChosen{};
    /// Refused: why.
    std::string reason{};
    /// Whether the list of candidates that the path was chosen from is not whole.
    bool isCut = false;
};

/// What came of all requests.
struct Evaluation
{
    Tally all{};
    /// The requests whose lists of candidates were not whole: what was chosen, and what is equally
    /// good, may then be by chance.
    std::size_t cutLists = 0;
    /// By what the request says of itself; empty where it says nothing.
    std::map<std::string, Tally> byGiven{};
    std::map<std::string, Tally> byCase{};
    std::map<std::size_t, Tally> bySubjects{};
    /// In the order of the lines.
    std::vector<Difference> differences{};
};

/// Asks the requests, one JSON object a line with the joins that a person wrote, and compares. A
/// request holds, beside what a batch reads, `joins`: a list of pairs of "table.column"; `db`
/// where there are several models; `given` and `case` where the output is to be split by them. A
/// line that cannot be answered counts as refused and the rest go on.
[[nodiscard]] Evaluation Evaluate(ModelSource& models, std::istream& requests,
                                  const Question& defaults);

} // namespace qe::tool

#endif
