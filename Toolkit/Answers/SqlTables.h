#ifndef TOOLKIT_ANSWERS_SQLTABLES_H
#define TOOLKIT_ANSWERS_SQLTABLES_H

#include "Engine/Model/Model.h"
#include "Toolkit/Ask/Answer.h"
#include "amd_id.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace qe::tool {

/// One appearance of a table in a statement.
struct SqlTable
{
    /// The table's name, quoted.
    std::string source{};
    /// The quoted name by which columns refer to it.
    std::string alias{};
};

/// The tables of a statement: one for each query subject or shortcut that it touches, but one for
/// all that the path takes for the same, by the joins between shortcuts and what they stand for.
class SqlTables
{
public:
    /// Assigns tables to the subjects of the question, in their order, then to the other ends of
    /// the joins of the path.
    SqlTables(const model::Model& model, const Answer& answer, const std::vector<amd_id>& path);

    [[nodiscard]] std::size_t GetCount() const { return mTables.size(); }
    [[nodiscard]] const SqlTable& Get(std::size_t index) const { return mTables[index]; }
    /// Returns the index of the subject's table. The subject is one that the constructor saw.
    [[nodiscard]] std::size_t IndexOf(const amd_id& subject) const { return mIndexes.at(subject); }
    [[nodiscard]] bool Has(const amd_id& subject) const { return mIndexes.count(subject) != 0; }

private:
    std::vector<SqlTable> mTables;
    std::map<amd_id, std::size_t> mIndexes;
};

} // namespace qe::tool

#endif
