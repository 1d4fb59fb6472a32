#ifndef TOOLKIT_HISTORY_SCHEMACOLUMNS_H
#define TOOLKIT_HISTORY_SCHEMACOLUMNS_H

#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qe::model {
class Model;
}

namespace qe::tool {

/// The tables and columns of a model by number, found by the names that past queries use.
class SchemaColumns
{
public:
    using Number = std::uint32_t;

    struct Table
    {
        /// The query subject; the empty id when several have the name.
        amd_id subject;
        /// In lower case.
        std::string name{};
        std::string displayName{};
    };

    struct Column
    {
        Number table = 0;
        /// The item; the empty id when several have the name.
        amd_id item;
        /// As "table.column", in lower case.
        std::string name{};
    };

    explicit SchemaColumns(const model::Model& model);

    /// Finds a table by the name of its query subject, or else by that of the table which it reads;
    /// the name is in lower case, and may have the names of its schema before it.
    [[nodiscard]] std::optional<Number> FindTable(std::string_view name) const;
    /// Finds a column by "table.column", in lower case.
    [[nodiscard]] std::optional<Number> FindColumn(std::string_view name) const;

    [[nodiscard]] const Table& GetTable(Number table) const { return mTables[table]; }
    [[nodiscard]] const Column& GetColumn(Number column) const { return mColumns[column]; }
    [[nodiscard]] std::size_t CountTables() const { return mTables.size(); }
    /// Returns the names of all tables, to find the nearest to a wrong one.
    [[nodiscard]] std::vector<std::string_view> GetTableNames() const;

private:
    struct Hash : std::hash<std::string_view>
    {
        using is_transparent = void;
    };
    using Names = std::unordered_map<std::string, Number, Hash, std::equal_to<>>;

    void AddTable(const model::Model& model, const amd_id& subject);
    void AddColumns(const model::Model& model, const amd_id& subject);

    std::vector<Table> mTables;
    std::vector<Column> mColumns;
    Names mTableNumbers;
    Names mColumnNumbers;
    /// What query subjects read, where no query subject has that name.
    Names mSourceNumbers;
};

} // namespace qe::tool

#endif
