#ifndef TOOLKIT_ASK_PATHADVISOR_H
#define TOOLKIT_ASK_PATHADVISOR_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/PathSieve.h"

#include <cstdint>
#include <optional>

namespace qe::model {
class Model;
}

namespace qe::tool {

/// Whether an advisor also tells what its advice rests on, which takes longer.
enum class EExplain : std::uint8_t
{
    No,
    Yes,
};

/// Knows of paths what their model does not say, and so is asked before its keys. Never changes
/// while questions are asked; any number of threads may ask it.
class PathAdvisor
{
public:
    virtual ~PathAdvisor() = default;

    /// Returns the choice among the alternatives of least weight; the first when there are none.
    [[nodiscard]] virtual PathChoice Choose(const model::Model& model,
                                            const Answer& answer) const = 0;

    /// Returns how often people used the joins in which the chosen path differs from the best of
    /// the others, once it is chosen; nothing when there is no other of least weight.
    [[nodiscard]] virtual std::optional<PastUse>
    FindPastUse(const model::Model& model, const Answer& answer, EExplain explain) const = 0;
};

} // namespace qe::tool

#endif
