#ifndef TOOLKIT_ASK_FUNCTIONSELECTOR_H
#define TOOLKIT_ASK_FUNCTIONSELECTOR_H

#include "AQE_I_JoinPathDescriptor.h"
#include "AQE_I_PathSelector.h"

#include <functional>
#include <utility>

namespace qe::tool {

/// Leaves the choice to a function.
class FunctionSelector final : public AQE_I_PathSelector
{
public:
    using Descriptors = std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>;
    using Function = std::function<std::uint32_t(const Descriptors&)>;

    explicit FunctionSelector(Function function) : mFunction(std::move(function)) {}

    std::uint32_t SelectPath(const Descriptors& descriptors) override
    {
        return mFunction(descriptors);
    }
    std::uint32_t SelectAlternative(const std::vector<std::vector<amd_id>>&) override { return 0; }

private:
    Function mFunction;
};

} // namespace qe::tool

#endif
