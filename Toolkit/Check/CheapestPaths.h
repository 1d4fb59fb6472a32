#ifndef TOOLKIT_CHECK_CHEAPESTPATHS_H
#define TOOLKIT_CHECK_CHEAPESTPATHS_H

#include "Engine/Graph/Core/Dijkstra.h"
#include "Toolkit/Check/ModelGraph.h"

#include <cstddef>
#include <vector>

namespace qe::tool {

/// The cheapest paths from one subject to all others within reach: Dijkstra's search that stops at
/// a weight, and over the graph of all cheapest paths that it leaves, immediate dominators as
/// Cooper, Harvey and Kennedy find them (in a graph without circles one pass does).
///
/// One object serves any number of searches; a search takes time for what it reaches only.
class CheapestPaths
{
public:
    CheapestPaths(const ModelGraph& model, int maximumWeight);

    /// Searches anew.
    void Search(std::size_t source);

    /// Returns the subjects reached, the source first, nearest first, then by number.
    [[nodiscard]] const std::vector<std::size_t>& GetReached() const { return mReached; }
    [[nodiscard]] int GetWeight(std::size_t subject) const { return mLabels[subject].weight; }
    /// Returns whether there are several cheapest paths to the subject without a subject between
    /// the ends that lies on all of them.
    [[nodiscard]] bool HasSeparatePaths(std::size_t subject) const;
    /// Returns the first `limit` cheapest paths, as joins from the source on.
    [[nodiscard]] std::vector<std::vector<std::size_t>> ListPaths(std::size_t target,
                                                                  std::size_t limit) const;
    /// How many joins all searches have passed.
    [[nodiscard]] std::size_t GetSteps() const { return mSteps; }

private:
    struct Label
    {
        /// Weight of the cheapest paths to the subject; -1 as long as it is not settled.
        int weight = -1;
        /// How many joins end a cheapest path to the subject.
        std::size_t lastJoins = 0;
        std::size_t dominator = 0;
        /// How many dominators lie between the source and the subject.
        std::size_t depth = 0;
    };

    void Settle(std::size_t subject, int weight);
    void FindDominator(std::size_t subject);
    [[nodiscard]] std::size_t CommonDominator(std::size_t a, std::size_t b) const;
    /// Returns whether a cheapest path to `end` takes the step from it last, backwards.
    [[nodiscard]] bool IsLastStep(std::size_t end, const ModelGraph::Step& step) const;

    const ModelGraph& mModel;
    int mMaximumWeight;
    std::size_t mSource = 0;
    std::size_t mSteps = 0;
    std::vector<Label> mLabels;
    std::vector<std::size_t> mReached;
    graph::DijkstraSearch mSearch;
};

} // namespace qe::tool

#endif
