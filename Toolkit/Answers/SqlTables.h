#ifndef TOOLKIT_ANSWERS_SQLTABLES_H
#define TOOLKIT_ANSWERS_SQLTABLES_H

#include "Engine/Model/Model.h"
#include "Toolkit/Ask/JoinPlan.h"
#include "Toolkit/Sql/SqlNames.h"
#include "amd_id.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

struct ToolModel;

/// One appearance of a table in a statement.
struct SqlTable
{
    /// The table's name as the statement writes it.
    std::string source{};
    /// The name by which columns refer to it, written as well.
    std::string alias{};
};

/// The tables of a path as a statement names them.
class SqlTables
{
public:
    /// Refers to the model and the path. Throws InputError for names that the dialect cannot have.
    SqlTables(const ToolModel& model, const PathTables& path,
              const SqlDialect& dialect = GetUsualSqlDialect());

    [[nodiscard]] const SqlDialect& GetDialect() const { return mNames.GetDialect(); }
    [[nodiscard]] bool IsForeign() const { return mNames.IsForeign(); }
    [[nodiscard]] const SqlTable& Get(std::size_t index) const { return mTables[index]; }
    /// Returns the index of the subject's table. The subject is one of the path.
    [[nodiscard]] std::size_t IndexOf(const amd_id& subject) const
    {
        return mPath.IndexOf(subject);
    }
    [[nodiscard]] bool Has(const amd_id& subject) const { return mPath.Has(subject); }
    /// Returns a column of the subject's table, with the table before it. The subject is one of the
    /// path.
    [[nodiscard]] std::string WriteColumn(const amd_id& subject, std::string_view column) const;
    /// Returns a name that the statement gives.
    [[nodiscard]] std::string WriteAlias(std::string_view alias) const
    {
        return mNames.WriteAlias(alias);
    }

private:
    /// A query subject and the parts of its table's name.
    struct Source
    {
        amd_id subject{};
        std::vector<std::string> parts{};
    };

    [[nodiscard]] Source FindSource(const amd_id& subject) const;
    [[nodiscard]] std::string Write(const Source& source) const;

    const model::Model& mModel;
    const PathTables& mPath;
    NameWriter mNames;
    std::vector<SqlTable> mTables;
};

} // namespace qe::tool

#endif
