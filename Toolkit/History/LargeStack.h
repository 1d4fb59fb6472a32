#ifndef TOOLKIT_HISTORY_LARGESTACK_H
#define TOOLKIT_HISTORY_LARGESTACK_H

#include <functional>

namespace qe::tool {

/// Runs the work on a thread of its own that may call itself a million times, and waits for it.
/// What it throws passes through. Throws std::runtime_error when there is no room for such a
/// thread.
void RunOnLargeStack(const std::function<void()>& work);

} // namespace qe::tool

#endif
