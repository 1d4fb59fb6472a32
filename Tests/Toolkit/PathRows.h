#ifndef TESTS_TOOLKIT_PATHROWS_H
#define TESTS_TOOLKIT_PATHROWS_H

#include "Toolkit/Ask/JoinPlan.h"
#include "Toolkit/Import/Sqlite/SqliteDatabase.h"
#include "Toolkit/Model/ToolModel.h"

#include <cstddef>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace qe::test {

/// The columns that tell the rows of every table apart, and what is summed.
inline constexpr const char* kRowId = "qe_row";
inline constexpr const char* kRowValue = "qe_value";

/// Makes tables with rows for the path of an answer: as many rows at each end of each join as its
/// cardinalities allow, and where they may be missing or many, some are.
class PathRows
{
public:
    /// Refers to the path.
    PathRows(const tool::ToolModel& model, const tool::PathTables& path);

    /// Returns whether rows can be made that suit every join of the path by itself: it is a tree of
    /// different tables, and no column takes part in two of its joins but as a key.
    [[nodiscard]] bool IsPossible() const { return mIsPossible; }
    /// Fills a new database.
    [[nodiscard]] tool::SqliteDatabase Make(std::mt19937& random) const;
    [[nodiscard]] std::size_t CountRows(std::size_t table) const { return mCounts[table]; }

private:
    using Columns = std::vector<std::pair<std::string, std::string>>;

    /// A join whose `from` columns hold what the `to` columns hold; both hold what they like when
    /// it is many-to-many.
    struct Reference
    {
        const tool::TableJoin* join = nullptr;
        std::size_t from = 0;
        std::size_t to = 0;
        Columns columns{};
    };
    /// The values of the columns of one table by row; nothing stands for null.
    using Values = std::map<std::string, std::vector<std::optional<long>>>;

    void AddReference(const tool::TableJoin& join);
    void CountAllRows();
    [[nodiscard]] bool HasConflicts() const;
    [[nodiscard]] static std::vector<std::optional<std::size_t>>
    DrawTargets(const Reference& reference, std::size_t from, std::size_t to, std::mt19937& random);
    /// Returns what a row of group `group` refers to: where rows may be missing, every second group
    /// meets none, at either end.
    [[nodiscard]] static std::size_t DrawGroup(const Reference& reference, std::size_t group,
                                               std::size_t groups);

    const tool::PathTables& mPath;
    std::vector<std::string> mSources;
    std::vector<Reference> mReferences;
    std::vector<std::size_t> mCounts;
    bool mIsPossible = false;
};

} // namespace qe::test

#endif
