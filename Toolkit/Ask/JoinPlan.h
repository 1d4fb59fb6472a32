#ifndef TOOLKIT_ASK_JOINPLAN_H
#define TOOLKIT_ASK_JOINPLAN_H

#include "Toolkit/Ask/Answer.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace qe::tool {

/// What the user may choose about how a statement joins its tables.
struct JoinOptions
{
    enum class EOuterJoins : std::uint8_t
    {
        /// What may be missing is joined by LEFT OUTER JOIN, and so is what lies behind it.
        ByCardinality,
        /// All joins are inner joins.
        Never,
    };

    EOuterJoins outerJoins = EOuterJoins::ByCardinality;
    /// The subject that the FROM clause begins with: its rows stay when others may be missing.
    /// Nothing: the one from which the fewest joins lead to a "many" side, of several the one that
    /// the question names first.
    std::optional<amd_id> start{};
};

/// One join of a path between two tables.
struct TableJoin
{
    const AnswerJoin* join = nullptr;
    std::size_t left = 0;
    std::size_t right = 0;

    /// Both take one of the two tables.
    [[nodiscard]] std::size_t OtherEnd(std::size_t end) const { return left == end ? right : left; }
    [[nodiscard]] const BMT_I_Association::CardinalityRange& CardinalityAt(std::size_t end) const
    {
        return left == end ? join->leftCardinality : join->rightCardinality;
    }
};

/// The tables of a path: one for each subject that it touches or that the question names, but one
/// for all that the path takes for the same, by the joins between shortcuts and what they stand
/// for. Those of the question come first, in its order.
class PathTables
{
public:
    /// Refers to the answer.
    PathTables(const Answer& answer, const std::vector<amd_id>& path);

    [[nodiscard]] std::size_t GetCount() const { return mTables.size(); }
    /// Returns the subjects that the table stands for. The first gives it its name; it is one of
    /// the question's where there is one.
    [[nodiscard]] const std::vector<amd_id>& GetSubjects(std::size_t table) const
    {
        return mTables[table];
    }
    [[nodiscard]] bool IsAsked(std::size_t table) const { return table < mAskedCount; }
    /// Returns the table of a subject that the constructor saw.
    [[nodiscard]] std::size_t IndexOf(const amd_id& subject) const { return mIndexes.at(subject); }
    [[nodiscard]] bool Has(const amd_id& subject) const { return mIndexes.count(subject) != 0; }
    /// Returns the joins that need conditions, in path order.
    [[nodiscard]] const std::vector<TableJoin>& GetJoins() const { return mJoins; }

private:
    std::vector<std::vector<amd_id>> mTables;
    std::size_t mAskedCount = 0;
    std::map<amd_id, std::size_t> mIndexes;
    std::vector<TableJoin> mJoins;
};

/// How one table comes into a statement.
struct JoinStep
{
    std::size_t table = 0;
    /// The table before it that `joins` lead from; nothing for the first of a part, which comes in
    /// by FROM or CROSS JOIN.
    std::optional<std::size_t> from{};
    /// The joins whose conditions it comes with: one, unless several lead to it.
    std::vector<TableJoin> joins{};
    /// Whether it comes in by LEFT OUTER JOIN.
    bool isOuter = false;
};

/// Returns the tables in the order in which a statement joins them.
[[nodiscard]] std::vector<JoinStep> PlanJoins(const PathTables& tables, const JoinOptions& options);

} // namespace qe::tool

#endif
