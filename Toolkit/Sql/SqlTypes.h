#ifndef TOOLKIT_SQL_SQLTYPES_H
#define TOOLKIT_SQL_SQLTYPES_H

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace qe::tool {

/// How a dialect writes one type in a CAST.
struct TypeForm
{
    /// Without a size; empty for as it is written.
    std::string_view plain{};
    /// What sizes stand behind; empty where the type takes none.
    std::string_view sized{};
};

inline constexpr std::size_t kTypeCount = 7;

/// How a dialect writes texts, whole numbers, large whole numbers, decimal numbers, real numbers,
/// truth values and points in time.
using TypeForms = std::array<TypeForm, kTypeCount>;

/// Returns the type, "varchar(10)", as the dialect of these forms writes it; as it stands when it
/// is none of theirs.
[[nodiscard]] std::string WriteType(const std::string& type, const TypeForms& forms);

} // namespace qe::tool

#endif
