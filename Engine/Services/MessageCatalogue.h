#ifndef ENGINE_SERVICES_MESSAGECATALOGUE_H
#define ENGINE_SERVICES_MESSAGECATALOGUE_H

#include "ORVMessageParm.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qe {

/// The message of an expression that cannot be read. All other messages of the catalogue are
/// raised by the library that the engine serves.
inline constexpr std::uint32_t kSyntaxErrorMessage = 0xA9E5E001;

/// The numbers of the texts that QERes knows: what separates the names of a list, and the name
/// under which the query engine writes to the log.
inline constexpr long kListSeparatorText = 29;
inline constexpr long kLogNameText = 340;

/// Returns the text of a message, in which {1} stands for the first parameter; empty when the
/// catalogue has no such message. The text lives as long as the process.
[[nodiscard]] std::string_view FindMessageText(std::uint32_t number) noexcept;

/// Returns the pattern with the parameters in the place of {1} to {9}. A placeholder without
/// parameter stays as it stands, and braces inside a parameter are never read as placeholders.
[[nodiscard]] std::string FillPlaceholders(std::string_view pattern,
                                           const std::vector<ORVMessageParm>& parameters);

} // namespace qe

#endif
