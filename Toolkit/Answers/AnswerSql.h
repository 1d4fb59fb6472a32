#ifndef TOOLKIT_ANSWERS_ANSWERSQL_H
#define TOOLKIT_ANSWERS_ANSWERSQL_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/JoinPlan.h"
#include "Toolkit/Sql/SqlDialect.h"
#include "amd_id.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qe::tool {

struct ToolModel;

struct SqlOptions : JoinOptions
{
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

    ESelect select = ESelect::FromClause;
    EPassedTables passedTables = EPassedTables::Joined;
    /// Null for the one that the model was read from, else the usual one.
    const SqlDialect* dialect = nullptr;
};

/// Returns SQL that joins the tables along the path, in the dialect. Each query subject
/// and shortcut is a table of its own, under its name; what the path takes for the same, by the
/// joins between shortcuts and what they stand for, is one. Subjects that the path does not reach
/// come in by CROSS JOIN.
///
/// Throws InputError when a condition or a name cannot be written in the dialect.
[[nodiscard]] std::string WriteSql(const ToolModel& model, const Answer& answer,
                                   const std::vector<amd_id>& path, const SqlOptions& options);

} // namespace qe::tool

#endif
