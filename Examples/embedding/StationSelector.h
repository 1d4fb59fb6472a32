#ifndef EXAMPLES_EMBEDDING_STATIONSELECTOR_H
#define EXAMPLES_EMBEDDING_STATIONSELECTOR_H

#include "AQE_I_PathSelector.h"
#include "amd_id.h"

#include <cstdint>
#include <vector>

namespace host {

/// This host's own idea of the right path: the best-ranked one that goes over the stations, and
/// the best-ranked one where none does.
class StationSelector : public AQE_I_PathSelector
{
public:
    /// Prints what it is shown, and what it chooses.
    std::uint32_t
    SelectPath(const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors) override;
    std::uint32_t SelectAlternative(const std::vector<std::vector<amd_id>>& paths) override;

    /// Makes it answer with a position that does not exist, as a faulty selector might.
    void Misbehave() { mMisbehaves = true; }

private:
    bool mMisbehaves = false;
};

} // namespace host

#endif
