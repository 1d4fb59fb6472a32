#ifndef ENGINE_MODEL_QUALIFIEDNAME_H
#define ENGINE_MODEL_QUALIFIEDNAME_H

#include "QEENGINE_EXPORT.h"

#include <string>
#include <string_view>
#include <vector>

namespace qe::model {

/// The names that lead to an object, outermost first, such as namespace, query subject, item.
using QualifiedName = std::vector<std::string>;

/// Returns the parts of `text` between its dots. A part that holds dots or brackets stands in
/// brackets, where "]]" means one closing bracket: "Sales.[Order.Lines].Id" has three parts. An
/// opening bracket that is never closed reaches to the end of the text.
[[nodiscard]] QEENGINE_EXPORT QualifiedName ParseQualifiedName(std::string_view text);

/// Returns the parts with dots between, in brackets where needed, so that parsing yields them
/// again.
[[nodiscard]] QEENGINE_EXPORT std::string ToText(const QualifiedName& name);

/// Returns the reference to the object as conditions write it: every part in brackets.
[[nodiscard]] QEENGINE_EXPORT std::string ToReferenceText(const QualifiedName& name);

} // namespace qe::model

#endif
