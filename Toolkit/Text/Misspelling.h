#ifndef TOOLKIT_TEXT_MISSPELLING_H
#define TOOLKIT_TEXT_MISSPELLING_H

#include <span>
#include <string_view>

namespace qe::tool {

/// Returns the known word that `wrong` can hardly be meant as anything but: one letter in five
/// differs at most, at least one, letter case aside. Empty when there is none. Where names are only
/// proposed, those further away may be as well (model::NearestNames); this decides that a word is a
/// mistake, and not one that is too new to be known.
[[nodiscard]] std::string_view FindMeantWord(std::string_view wrong,
                                             std::span<const std::string_view> known);

} // namespace qe::tool

#endif
