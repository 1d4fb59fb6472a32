#ifndef ENGINE_GRAPH_STEINER_RESTBOUND_H
#define ENGINE_GRAPH_STEINER_RESTBOUND_H

#include "Engine/Graph/Steiner/DualAscent.h"
#include "Engine/Graph/Steiner/SetTable.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qe::graph {

/// Bounds what is missing when a partial tree joins some terminals to a node.
///
/// The rest of the tree, seen from the root, must reach the node and all other terminals. So it
/// enters every cut of a dual ascent that holds the node or one of those terminals, and pays its
/// price; and it contains a way from the root to the node, which pays the reduced weights. The
/// bound is consistent: growing along an edge, or joining two partial trees, never lowers the
/// weight so far plus the bound. So a best-first search settles each partial tree once.
template <std::size_t Words>
class RestBound : public CutObserver
{
public:
    using Set = TerminalSet<Words>;

    /// Takes the root that the terminals are numbered without.
    RestBound(const FlatNetwork& network, std::uint32_t root);

    void Raise(std::span<const std::uint32_t> nodes, std::uint64_t price) override;

    /// Packs what was raised for the search; needs the reduced weights of the finished ascent.
    void Finish(const DualAscent& ascent);

    /// Answers the number of a terminal that is not the root, else None.
    [[nodiscard]] std::uint32_t GetBit(std::uint32_t node) const { return mBits[node]; }

    /// Answers what the terminals that are not in the set demand, wherever the node lies.
    [[nodiscard]] std::uint64_t GetSetPart(const Set& set) const;

    /// Answers what the node demands beyond that.
    [[nodiscard]] std::uint64_t GetNodePart(std::uint32_t node, const Set& set) const
    {
        std::uint64_t bound = mWays[node];
        for (std::uint32_t place = mFirst[node]; place < mFirst[node + 1]; ++place) {
            if (mCharges[place].set.IsSubsetOf(set))
                bound += mCharges[place].price;
        }
        return bound;
    }

private:
    struct Charge
    {
        Set set;
        std::uint64_t price;
    };
    struct NumberedCharge
    {
        std::uint32_t node;
        std::uint32_t set;
        std::uint64_t price;
    };

    std::vector<std::uint32_t> mBits;
    SetTable<Words> mSets;
    std::vector<std::uint64_t> mPrices;
    std::vector<NumberedCharge> mRaised;
    /// Place in mRaised of the last charge at each node.
    std::vector<std::uint32_t> mLast;
    std::vector<std::uint32_t> mFirst;
    std::vector<Charge> mCharges;
    /// Reduced weight of the way from the root to each node.
    std::vector<std::uint64_t> mWays;
    const FlatNetwork& mNetwork;
};

} // namespace qe::graph

#endif
