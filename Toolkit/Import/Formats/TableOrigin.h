#ifndef TOOLKIT_IMPORT_FORMATS_TABLEORIGIN_H
#define TOOLKIT_IMPORT_FORMATS_TABLEORIGIN_H

#include "Toolkit/Import/Formats/PlainSelect.h"
#include "Toolkit/Text/JsonObject.h"
#include "Toolkit/Text/JsonProblems.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace qe::tool {

/// Finds out which table of the database a table of a tabular model is.
class TableOrigin
{
public:
    /// Takes the source of one more partition. `type` is empty where the source tells it itself.
    void AddPartition(const PlacedJson& source, std::string type, JsonProblems& problems);

    /// Tells what the partitions call a column that the model calls otherwise; `name` is empty for
    /// one that only the model has.
    void NameColumn(const std::string& column, const std::string& name) { mNames[column] = name; }

    /// SQL will compare the column, under the name that the model gives it. Called after the
    /// others.
    void UseColumn(const std::string& column);

    /// Returns the parts of the table's name. None where the partitions read other rows than those
    /// of one table, where that cannot be seen, or where it lacks a column that is used.
    [[nodiscard]] const std::vector<std::string>& GetPath() const { return mTable.path; }

private:
    std::size_t mPartitions = 0;
    QueriedTable mTable;
    std::map<std::string, std::string> mNames;
};

} // namespace qe::tool

#endif
