#ifndef ENGINE_GRAPH_STEINER_BOUND_COMPLETIONBOUND_H
#define ENGINE_GRAPH_STEINER_BOUND_COMPLETIONBOUND_H

#include "Engine/Graph/Steiner/Bound/DualAscent.h"
#include "Engine/Graph/Steiner/Bound/ReducedCosts.h"
#include "Engine/Graph/Steiner/Network/SetTable.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

/// Bounds from below what completes a partial tree that joins some terminals to a node, by the cuts
/// of one dual ascent: the bound that the search of Hougardy, Silvanus and Vygen (2017) asks for.
///
/// The rest of the tree connects the node and all other terminals, among them the search's root.
/// When the ascent's root is there too, then the rest, seen from it, enters every cut that holds
/// the node or one of those terminals, and contains a path to the node that pays the reduced
/// weights. When the ascent's root is joined already, the rest, seen from the node, enters every
/// cut that holds another terminal but not the node, and contains a path to the search's root.
///
/// The bound is consistent: growing along an edge, or joining two partial trees, never lowers
/// the weight so far plus the bound. So a best-first search settles each partial tree once, also
/// with the greatest of several such bounds.
template <std::size_t Words>
class CompletionBound : public CutObserver
{
public:
    using Set = TerminalSet<Words>;

    /// Takes the root of the search. Keeps a reference to the network.
    CompletionBound(const FlatNetwork& network, NodeIndex searchRoot);

    void Raise(std::span<const NodeIndex> nodes, std::span<const ArcSlot> entering,
               std::uint64_t price) override;

    /// Packs what was raised for the search; needs the reduced weights of the finished ascent,
    /// and a weight above which trees are not looked for. Two runs of Dijkstra's algorithm.
    void Finish(const DualAscent& ascent, std::uint64_t limit);

    /// Returns what the terminals that are not in the set demand.
    [[nodiscard]] std::uint64_t GetSetPart(const Set& set) const;

    /// Returns whether that is a bound by itself, wherever the node lies.
    [[nodiscard]] bool IsBoundAlone(const Set& set) const { return !set.Contains(mRootBit); }

    /// Returns the bound, from the part that the set demands. Costs the number of charges at the
    /// node.
    [[nodiscard]] std::uint64_t Get(NodeIndex node, const Set& set, std::uint64_t setPart) const
    {
        std::uint64_t joined = 0;
        for (std::uint32_t place = mFirst[node.value]; place < mFirst[node.value + 1]; ++place) {
            if (mCharges[place].set.IsSubsetOf(set))
                joined += mCharges[place].price;
        }
        if (!set.Contains(mRootBit))
            return setPart + joined + mPathsFromRoot[node];
        return setPart + joined - mTotals[node] + mPathsToSearchRoot[node];
    }

private:
    struct Charge
    {
        Set set;
        std::uint64_t price;
    };
    struct NumberedCharge
    {
        NodeIndex node;
        SetIndex set;
        std::uint64_t price;
    };

    const FlatNetwork& mNetwork;
    NodeIndex mSearchRoot;
    /// The number that the ascent's root has among the terminals.
    std::uint32_t mRootBit = 0;
    IndexedVector<NodeIndex, std::uint32_t> mBits;
    SetTable<Words> mSets;
    IndexedVector<SetIndex, std::uint64_t> mPrices;
    std::vector<NumberedCharge> mRaised;
    /// Place in mRaised of the last charge at each node.
    IndexedVector<NodeIndex, std::uint32_t> mLast;
    std::vector<std::uint32_t> mFirst;
    std::vector<Charge> mCharges;
    /// Sum of the charges at each node.
    IndexedVector<NodeIndex, std::uint64_t> mTotals;
    NodeDistances mPathsFromRoot;
    NodeDistances mPathsToSearchRoot;
};

} // namespace qe::graph

#endif
