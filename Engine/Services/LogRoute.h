#ifndef ENGINE_SERVICES_LOGROUTE_H
#define ENGINE_SERVICES_LOGROUTE_H

#include "Engine/Services/LogTarget.h"

#include <memory>

namespace qe {

/// What a writer needs to know: the highest level that is wanted, 0 for none, and the target,
/// which is null when none is.
struct LogRoute
{
    int level = 0;
    std::shared_ptr<LogTarget> target{};
};

} // namespace qe

#endif
