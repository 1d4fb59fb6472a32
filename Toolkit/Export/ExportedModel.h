#ifndef TOOLKIT_EXPORT_EXPORTEDMODEL_H
#define TOOLKIT_EXPORT_EXPORTEDMODEL_H

#include "Engine/Model/ObjectRecord.h"
#include "Toolkit/Import/Formats/LeftOut.h"
#include "amd_id.h"

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

struct ToolModel;

/// Gives each object a name that no other one has, whatever the case of A to Z.
class UniqueNames
{
public:
    /// Names that are taken get numbers between the two texts.
    explicit UniqueNames(std::string_view before = " (", std::string_view behind = ")")
        : mBefore(before), mBehind(behind)
    {}

    [[nodiscard]] bool IsFree(const std::string& name) const;
    std::string Take(const std::string& name);

private:
    std::string mBefore;
    std::string mBehind;
    std::set<std::string> mTaken;
};

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
    /// Whether it reads the table of another one.
    bool isRole = false;
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

/// Returns the model as other tools see it: shortcuts to query subjects are subjects of their own
/// that read the same table, so that nobody takes their joins for joins of that table. What other
/// tools have no place for is added to `leftOut`.
[[nodiscard]] ExportedModel CollectModel(const ToolModel& model, LeftOut& leftOut);

/// What a format writes for a name, which it may not be able to hold as it is.
using NameSpelling = std::string (*)(std::string_view name);

/// Spells the names of the subjects, so that they stay different.
void SpellSubjects(ExportedModel& model, NameSpelling spell);

/// The same for columns, also in keys and joins.
void SpellColumns(ExportedModel& model, NameSpelling spell);

/// Adds the roles, for formats that cannot say what table a subject reads.
void NoteRoles(const ExportedModel& model, LeftOut& leftOut);

/// Returns whether a key of the subject lies within the columns.
[[nodiscard]] bool HasKeyWithin(const ExportedSubject& subject,
                                const std::vector<std::string>& columns);

/// Adds the joins whose condition is more than equal columns. Returns the others.
[[nodiscard]] std::vector<ExportedJoin> TakePlainJoins(const ExportedModel& model,
                                                       LeftOut& leftOut);

} // namespace qe::tool

#endif
