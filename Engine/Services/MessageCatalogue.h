#ifndef ENGINE_SERVICES_MESSAGECATALOGUE_H
#define ENGINE_SERVICES_MESSAGECATALOGUE_H

#include "ORVMessageParm.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qe {

/// Gives the text of a message, in which {1} stands for the first parameter; empty when the
/// catalogue has no such message. The text lives as long as the process.
[[nodiscard]] std::string_view FindMessageText(std::uint32_t number) noexcept;

/// Puts the parameters in the place of {1} to {9}. A placeholder without parameter stays as it
/// stands, and braces inside a parameter are never read as placeholders.
[[nodiscard]] std::string FillPlaceholders(std::string_view pattern,
                                           const std::vector<ORVMessageParm>& parameters);

} // namespace qe

#endif
