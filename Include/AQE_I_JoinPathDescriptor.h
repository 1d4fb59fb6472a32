#ifndef INCLUDE_AQE_I_JOINPATHDESCRIPTOR_H
#define INCLUDE_AQE_I_JOINPATHDESCRIPTOR_H

#include "QEREFINER_EXPORT.h"
#include "amd_id.h"

#include <vector>

/// One ranked candidate join path, as path selectors see it. Descriptors never change.
class QEREFINER_EXPORT AQE_I_JoinPathDescriptor
{
public:
    virtual ~AQE_I_JoinPathDescriptor();

    /// Replaces `joinPath` by the join ids of the path, in path order.
    virtual void GetJoinPath(std::vector<amd_id>& joinPath) const = 0;

    /// Returns the ranking: 100 is best, 0 worst. Negative weights lead outside this range.
    [[nodiscard]] virtual int GetRank() const = 0;

    /// Returns the weight from which the ranking was computed; less is better.
    [[nodiscard]] virtual int GetComputedWeight() const = 0;
};

#endif
