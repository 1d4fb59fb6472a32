#ifndef TOOLKIT_IMPORT_DDL_READINGNOTES_H
#define TOOLKIT_IMPORT_DDL_READINGNOTES_H

#include "Toolkit/Import/Ddl/Declarations.h"

#include <cstddef>
#include <string>
#include <vector>

namespace qe::tool {

/// What reading scripts could not make tables and keys of: told one by one or counted.
class ReadingNotes
{
public:
    /// Tells a sentence about a statement. Only the first hundred are kept; the others are counted.
    void Tell(const ScriptPlace& place, const std::string& text);

    void CountStatement() { ++mStatements; }
    /// Counts a statement that says nothing on tables and keys.
    void CountSkipped() { ++mSkipped; }
    /// Counts unique keys that say nothing on whole rows.
    void CountPartialKeys(std::size_t count) { mPartialKeys += count; }
    void CountPartition() { ++mPartitions; }

    /// Returns how much was read, such as "12 statements, 4 of them passed over".
    [[nodiscard]] std::string DescribeExtent() const;
    /// Returns what was told and counted, one sentence each.
    [[nodiscard]] std::vector<std::string> List() const;

private:
    std::vector<std::string> mTold;
    std::size_t mNotTold = 0;
    std::size_t mStatements = 0;
    std::size_t mSkipped = 0;
    std::size_t mPartialKeys = 0;
    std::size_t mPartitions = 0;
};

} // namespace qe::tool

#endif
