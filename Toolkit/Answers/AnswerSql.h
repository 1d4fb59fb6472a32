#ifndef TOOLKIT_ANSWERS_ANSWERSQL_H
#define TOOLKIT_ANSWERS_ANSWERSQL_H

#include "Toolkit/Ask/Answer.h"
#include "amd_id.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qe::tool {

struct ToolModel;

struct SqlOptions
{
    enum class EOuterJoins : std::uint8_t
    {
        /// What may be missing is joined by LEFT OUTER JOIN, and so is what lies behind it.
        ByCardinality,
        /// All joins are inner joins.
        Never,
    };

    enum class ESelect : std::uint8_t
    {
        FromClause,
        /// A whole statement that selects the first items of each subject of the question.
        FirstItems,
    };

    enum class EPassedTables : std::uint8_t
    {
        Joined,
        /// Tables that the path only passes are left out; see SkipPassedTables.
        Skipped,
    };

    EOuterJoins outerJoins = EOuterJoins::ByCardinality;
    ESelect select = ESelect::FromClause;
    EPassedTables passedTables = EPassedTables::Joined;
    /// The subject that the FROM clause begins with: its rows stay when others may be missing.
    /// Nothing: the one from which the fewest joins lead to a "many" side, of several the one that
    /// the question names first.
    std::optional<amd_id> start{};
};

/// Returns SQL that joins the tables along the path, for SQLite and PostgreSQL. Each query subject
/// and shortcut is a table of its own, under its name; what the path takes for the same, by the
/// joins between shortcuts and what they stand for, is one. Subjects that the path does not reach
/// come in by CROSS JOIN.
///
/// Throws InputError when a condition or a name cannot be written in SQL.
[[nodiscard]] std::string WriteSql(const ToolModel& model, const Answer& answer,
                                   const std::vector<amd_id>& path, const SqlOptions& options);

} // namespace qe::tool

#endif
