#ifndef TOOLKIT_IMPORT_FORMATS_SUBJECTINDEX_H
#define TOOLKIT_IMPORT_FORMATS_SUBJECTINDEX_H

#include "Toolkit/Import/Schema/DatabaseSchema.h"
#include "Toolkit/Text/JsonObject.h"
#include "Toolkit/Text/JsonProblems.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace qe::tool {

/// Finds the query subjects of a source by the names that it gives them. Letter case counts.
class SubjectIndex
{
public:
    /// Returns whether the name was free. An empty one is that of a subject whose name could not be
    /// read; it stands for the last of these.
    bool Add(const std::string& name, std::size_t position)
    {
        if (!name.empty())
            return mPositions.emplace(name, position).second;
        mIsComplete = false;
        mPositions.insert_or_assign(name, position);
        return true;
    }

    /// Adds a table to the schema. Reports a name that another one has, and misspelt keys, at the
    /// object that it was read from.
    void TakeTable(SchemaTable table, DatabaseSchema& schema, JsonObject& json,
                   JsonProblems& problems);

    /// Returns whether all names could be read, so that a name that is not found is a mistake of
    /// its own.
    [[nodiscard]] bool IsComplete() const { return mIsComplete; }

    [[nodiscard]] std::optional<std::size_t> Find(const std::string& name) const;

    /// Returns the position of the subject that the text of a required key names; one that is
    /// missing or unknown is reported, with the nearest names.
    [[nodiscard]] std::optional<std::size_t> Find(JsonObject& json, const char* key,
                                                  JsonProblems& problems) const;

    [[nodiscard]] std::vector<std::string> Nearest(const std::string& name) const;

private:
    std::map<std::string, std::size_t> mPositions;
    bool mIsComplete = true;
};

/// Lets the table have the column, for sources that do not list all. Returns it.
SchemaColumn& EnsureColumn(SchemaTable& table, const std::string& column);

/// Lists the columns of a table, of which there may be many.
class ColumnList
{
public:
    /// Refers to the table, to which nothing else adds columns meanwhile.
    explicit ColumnList(SchemaTable& table) : mTable(table) {}

    /// Adds a column, unless it is there. The first description counts.
    void Add(const std::string& column, const std::string& description);

private:
    SchemaTable& mTable;
    std::map<std::string, std::size_t> mPositions;
};

enum class EKey
{
    Primary,
    Unique,
};

/// Adds a key, unless it has no columns or the table has it already. The columns are spelt like
/// those of the table, which gets those that it lacks.
void AddKey(SchemaTable& table, EKey kind, std::vector<std::string> columns);

} // namespace qe::tool

#endif
