#ifndef TOOLKIT_CHECK_FACTSETS_H
#define TOOLKIT_CHECK_FACTSETS_H

#include "Toolkit/Check/ModelGraph.h"

#include <cstddef>
#include <vector>

namespace qe::tool {

/// Which facts lie above each subject. A fact is a subject that many-to-one joins lead away from
/// and none leads to; above a subject lies what is reached from it against the direction of
/// many-to-one joins.
class FactSets
{
public:
    explicit FactSets(const ModelGraph& model);

    /// Gives the subjects of which the subject is directly a dimension, in order, each once.
    [[nodiscard]] const std::vector<std::size_t>& GetDetails(std::size_t subject) const
    {
        return mDetails[subject];
    }
    /// Gives everything above the subject, itself included, in order.
    [[nodiscard]] std::vector<std::size_t> FindAbove(std::size_t subject) const;
    /// Gives the facts above the subject, in order.
    [[nodiscard]] std::vector<std::size_t> FindFacts(std::size_t subject) const;

private:
    std::vector<std::vector<std::size_t>> mDetails;
    std::vector<bool> mIsFact;
};

} // namespace qe::tool

#endif
