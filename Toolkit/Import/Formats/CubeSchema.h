#ifndef TOOLKIT_IMPORT_FORMATS_CUBESCHEMA_H
#define TOOLKIT_IMPORT_FORMATS_CUBESCHEMA_H

#include "Toolkit/Import/Formats/SourceDocument.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

struct CubeDimension
{
    std::string name{};
    std::string sql{};
    std::string description{};
    bool isKey = false;
};

struct CubeJoin
{
    std::string target{};
    bool isLeftMany = false;
    bool isRightMany = false;
    std::string sql{};
    /// Where it stands; not owned.
    SourceDocument* document = nullptr;
    std::string pointer{};
};

struct Cube
{
    std::string name{};
    std::string description{};
    /// The cube whose members it takes over; empty for none.
    std::string extends{};
    /// Only one of them; both empty where neither is known.
    std::string table{};
    std::string query{};
    std::vector<CubeDimension> dimensions{};
    std::vector<CubeJoin> joins{};
    SourceDocument* document = nullptr;
    std::string pointer{};
};

/// The cubes of a model, by their names.
using Cubes = std::map<std::string, const Cube*>;

/// Returns SQL in which every name in braces is replaced: a cube by its name between double quotes,
/// a member by its dimension's SQL. `problem` becomes why that cannot be done; the result is empty
/// then.
[[nodiscard]] std::string ExpandMembers(std::string_view sql, const Cube& self, const Cubes& cubes,
                                        std::string& problem);

/// Returns the column of the cube's table that the dimension is; empty when it is none.
[[nodiscard]] std::string ColumnOf(const CubeDimension& dimension, const Cube& cube,
                                   const Cubes& cubes);

/// Returns the names of a table in the database, which SQL writes with dots between; none when the
/// text is something else.
[[nodiscard]] std::vector<std::string> ReadTableName(std::string_view sql);

} // namespace qe::tool

#endif
