#ifndef TOOLKIT_IMPORT_FORMATS_YAMLTEMPLATES_H
#define TOOLKIT_IMPORT_FORMATS_YAMLTEMPLATES_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// A text without the parts that a template engine would have to make.
struct TemplateFree
{
    /// Has as many lines as before.
    std::string text{};
    /// The lines, from 1, of the templates that were left out.
    std::vector<std::size_t> lines{};
};

/// Returns whether a template stands in the text: "{{ x }}", "{% if x %}" or "{# x #}".
[[nodiscard]] bool HasTemplates(std::string_view text);

/// Leaves out the templates of a YAML text, each with the smallest part that depends on it: the
/// entries between "{% if x %}" and its end, the property of a cube that is not its name, what it
/// extends, or in a list; else the entry of the innermost list around it. Returns nothing where a
/// template stands outside of any list, or has no end.
[[nodiscard]] std::optional<TemplateFree> LeaveOutTemplates(std::string_view text);

} // namespace qe::tool

#endif
