#ifndef TOOLKIT_AGENT_REVISION_H
#define TOOLKIT_AGENT_REVISION_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// One revision of the Model Context Protocol, as far as a server of tools can tell it from others.
struct Revision
{
    enum class EOpening : std::uint8_t
    {
        /// The client opens a session with "initialize", and its later messages rely on it.
        Handshake,
        /// Every request names its revision, and no request relies on another.
        EveryRequest,
    };

    enum class EBatches : std::uint8_t
    {
        Refused,
        Taken,
    };

    enum class EStructure : std::uint8_t
    {
        TextAlone,
        /// Results are also JSON that fits a schema, which the list of tools tells.
        Structured,
    };

    /// The day that it is called after, such as "2025-11-25".
    std::string_view name{};
    EOpening opening = EOpening::Handshake;
    EBatches batches = EBatches::Refused;
    EStructure structure = EStructure::Structured;
};

/// Returns all revisions that are spoken, the newest first. They live forever.
[[nodiscard]] std::span<const Revision> GetRevisions();

/// Returns the revision of that name, or null.
[[nodiscard]] const Revision* FindRevision(std::string_view name);

/// Returns the revision that a session has whose client asks for that one: the same where it is
/// spoken and begins with a handshake, else the newest that does.
[[nodiscard]] const Revision& NegotiateRevision(std::string_view asked);

/// Returns the names of all revisions, the newest first.
[[nodiscard]] std::vector<std::string> ListRevisionNames();

} // namespace qe::tool

#endif
