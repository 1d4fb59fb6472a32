#ifndef TOOLKIT_ASK_PATHKEYS_H
#define TOOLKIT_ASK_PATHKEYS_H

#include "Toolkit/Ask/Answer.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace qe::model {
class Model;
}

namespace qe::tool {

/// What the keys of one path say. Less is better in all but the pairs.
struct PathKeys
{
    /// The words by which the names of joined columns differ.
    std::int64_t differingWords = 0;
    std::int64_t pairs = 0;
    /// The joins that may find no row, having no end of exactly one.
    std::int64_t optionalJoins = 0;
    /// The sum over the joins of the mean position of their referring columns among the items of
    /// their subject, in parts of kPositionParts; the middle of the items where it is not known
    /// which columns refer, or where they stand.
    std::int64_t positions = 0;
    /// The tables that hold the referring columns of a join.
    std::int64_t referringTables = 0;
};

/// Fine enough for the mean of a few columns.
inline constexpr std::int64_t kPositionParts = 1000;

/// Measures the keys of paths; each join of an answer is looked at once.
class KeyMeasures
{
public:
    /// Refers to both.
    KeyMeasures(const model::Model& model, const Answer& answer) : mModel(model), mAnswer(answer) {}

    /// Returns what the keys of the path say; joins that the answer does not know say nothing.
    [[nodiscard]] PathKeys Measure(const std::vector<amd_id>& path);

private:
    struct JoinKeys
    {
        PathKeys keys{};
        /// The end that refers to the other; the empty id when it is not known.
        amd_id referringEnd;
    };

    [[nodiscard]] const JoinKeys& Get(const AnswerJoin& join);
    [[nodiscard]] JoinKeys MeasureJoin(const AnswerJoin& join) const;

    const model::Model& mModel;
    const Answer& mAnswer;
    std::map<amd_id, JoinKeys> mJoins;
};

/// Returns how many joins of the path are walked from one row to many when the walk begins where
/// that happens least often. Takes about linear time.
[[nodiscard]] std::int64_t CountWalksToMany(const Answer& answer, const std::vector<amd_id>& path);

} // namespace qe::tool

#endif
