#ifndef TOOLKIT_IMPORT_FORMATS_TMDLWORDS_H
#define TOOLKIT_IMPORT_FORMATS_TMDLWORDS_H

#include <string>
#include <string_view>

namespace qe::tool {

/// What the word before the name of an object of TMDL comes to.
struct TmdlWord
{
    /// The word as the format spells it, whose letter case does not count; empty where it has none.
    std::string_view known{};
    /// Where it has none: the word that must be meant; empty where it may be a new one.
    std::string_view meant{};
    /// Whether joins, or what they lead to, are lost without objects of the word that is meant.
    bool isNeeded = false;
};

[[nodiscard]] TmdlWord RecogniseTmdlWord(std::string_view word);

/// Returns whether it holds the objects of a model without being one of them.
[[nodiscard]] bool IsTmdlContainer(std::string_view word);

/// Returns the name of a property as the readers of models spell it.
[[nodiscard]] std::string SpellTmdlProperty(std::string_view name);

/// Returns whether the property is true or false, and not a text that happens to say so.
[[nodiscard]] bool IsTmdlBoolean(std::string_view property);

} // namespace qe::tool

#endif
