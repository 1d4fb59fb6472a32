#include "Toolkit/Agent/Revision.h"

#include <algorithm>
#include <array>

namespace qe::tool {

namespace {

constexpr std::array kRevisions{
    Revision{.name = "2026-07-28", .opening = Revision::EOpening::EveryRequest},
    Revision{.name = "2025-11-25"},
    Revision{.name = "2025-06-18"},
    Revision{.name = "2025-03-26",
             .batches = Revision::EBatches::Taken,
             .structure = Revision::EStructure::TextAlone},
    Revision{.name = "2024-11-05", .structure = Revision::EStructure::TextAlone},
};

} // namespace

std::span<const Revision> GetRevisions()
{
    return kRevisions;
}

const Revision* FindRevision(std::string_view name)
{
    const auto* const found =
        std::find_if(kRevisions.begin(), kRevisions.end(),
                     [name](const Revision& revision) { return revision.name == name; });
    return found == kRevisions.end() ? nullptr : found;
}

const Revision& NegotiateRevision(std::string_view asked)
{
    const auto hasHandshake = [](const Revision& revision) {
        return revision.opening == Revision::EOpening::Handshake;
    };
    const Revision* const same = FindRevision(asked);
    return same != nullptr && hasHandshake(*same)
               ? *same
               : *std::find_if(kRevisions.begin(), kRevisions.end(), hasHandshake);
}

std::vector<std::string> ListRevisionNames()
{
    std::vector<std::string> names;
    for (const Revision& revision : kRevisions)
        names.emplace_back(revision.name);
    return names;
}

} // namespace qe::tool
