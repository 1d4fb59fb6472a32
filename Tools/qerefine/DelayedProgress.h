#ifndef TOOLS_QEREFINE_DELAYEDPROGRESS_H
#define TOOLS_QEREFINE_DELAYEDPROGRESS_H

#include "Toolkit/Batch/ProgressBar.h"
#include "Tools/qerefine/Command.h"

#include <chrono>
#include <optional>

namespace qe::tool {

/// Shows on a terminal how far work is that takes longer than a second.
class DelayedProgress
{
public:
    explicit DelayedProgress(const CommandContext& context)
    {
        constexpr std::chrono::seconds kDelay(1);
        if (context.terminal.error == Terminal::EStream::Terminal)
            mBar.emplace(context.error, context.terminal.width, kDelay);
    }

    /// Returns what is to be told of the progress, empty where nothing is shown. Refers to this.
    [[nodiscard]] ProgressObserver GetObserver()
    {
        if (!mBar)
            return {};
        return [this](const Progress& progress) { mBar->Show(progress); };
    }

private:
    std::optional<ProgressBar> mBar;
};

} // namespace qe::tool

#endif
