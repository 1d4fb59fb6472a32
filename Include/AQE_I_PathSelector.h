#ifndef INCLUDE_AQE_I_PATHSELECTOR_H
#define INCLUDE_AQE_I_PATHSELECTOR_H

#include "AUT_RefPtr.h"
#include "QEREFINER_EXPORT.h"
#include "amd_id.h"

#include <cstdint>
#include <vector>

class AQE_I_JoinPathDescriptor;
class AQE_I_PathSelector;
class amdi_gateway;

extern template class QEREFINER_EXPORT AUT_RefPtr<AQE_I_PathSelector>;

/// Chooses one of several ranked join paths. Callers of the refiner may bring their own.
class QEREFINER_EXPORT AQE_I_PathSelector
{
public:
    virtual ~AQE_I_PathSelector();

    /// Makes the selector that always takes the best-ranked path. `gateway` is not used and may
    /// be null.
    [[nodiscard]] static AUT_RefPtr<AQE_I_PathSelector>
    CreateFirstPathSelector(amdi_gateway* gateway);

    /// Returns the index of the chosen descriptor; they stand in rank order, best first. The index
    /// must be below their number: the refiner reports any other as an error. The selector may
    /// keep references to descriptors.
    virtual std::uint32_t
    SelectPath(const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors) = 0;

    /// Returns the index of the chosen one among plain join paths. The refiner never asks this; it
    /// serves callers that hold paths without descriptors.
    virtual std::uint32_t SelectAlternative(const std::vector<std::vector<amd_id>>& paths) = 0;
};

#endif
