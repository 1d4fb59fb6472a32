#ifndef TOOLKIT_EXPORT_EXPORTEDMODEL_H
#define TOOLKIT_EXPORT_EXPORTEDMODEL_H

#include "Engine/Model/ObjectRecord.h"
#include "Toolkit/Import/Formats/LeftOut.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

struct ToolModel;

/// A query subject or a role of one, as other tools see it.
struct ExportedSubject
{
    /// No other one has it.
    std::string name{};
    /// The parts of its name in the database.
    std::vector<std::string> source{};
    std::string description{};
    /// The names of the columns, with what is said of them.
    std::vector<std::pair<std::string, std::string>> columns{};
    std::vector<std::vector<std::string>> keys{};
};

/// One end of a join.
struct ExportedEnd
{
    /// The position of the subject.
    std::size_t subject = 0;
    /// In pairs with those of the other end.
    std::vector<std::string> columns{};
    bool isMany = false;
    bool isOptional = false;
};

/// A join, turned so that a "many" end stands left where the other is none.
struct ExportedJoin
{
    /// No other one has it.
    std::string name{};
    ExportedEnd left{};
    ExportedEnd right{};
    /// Whether the condition is a conjunction of equal columns; else the ends have none.
    bool isPlain = false;
    std::string condition{};
};

/// What of a model other tools have a place for.
struct ExportedModel
{
    std::string name{};
    std::vector<ExportedSubject> subjects{};
    std::vector<ExportedJoin> joins{};
};

/// What becomes of shortcuts to query subjects.
enum class EExportedRoles : std::uint8_t
{
    /// Each is a subject of its own that reads the same table.
    Subjects,
    /// Joins lead to what they stand for.
    Targets,
};

/// Returns the model as other tools see it; what they have no place for is added to `leftOut`.
[[nodiscard]] ExportedModel CollectModel(const ToolModel& model, EExportedRoles roles,
                                         LeftOut& leftOut);

/// Returns whether a key of the subject lies within the columns.
[[nodiscard]] bool HasKeyWithin(const ExportedSubject& subject,
                                const std::vector<std::string>& columns);

/// Adds the joins whose condition is more than equal columns. Returns the others.
[[nodiscard]] std::vector<ExportedJoin> TakePlainJoins(const ExportedModel& model,
                                                       LeftOut& leftOut);

} // namespace qe::tool

#endif
