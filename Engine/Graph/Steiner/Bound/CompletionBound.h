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

    void Raise(const RaisedCut& cut) override;

    /// Packs what was raised for the search; needs the reduced weights of the finished ascent,
    /// and a weight above which trees are not looked for. Two runs of Dijkstra's algorithm.
    void Finish(const DualAscent& ascent, std::uint64_t limit);

    /// Returns what the terminals that are not in the set demand, in grains of the ascent.
    [[nodiscard]] std::uint64_t GetSetPart(const Set& set) const;

    /// Returns what that part bounds by itself, wherever the node lies; 0 when it bounds nothing.
    [[nodiscard]] std::uint64_t GetAlone(const Set& set, std::uint64_t setPart) const
    {
        return set.Contains(mRootBit) ? 0 : RoundUp(setPart, mGrainShift);
    }

    /// Returns the bound, from the part that the set demands. Costs the number of charges at the
    /// node.
    ///
    /// Rounding up keeps it consistent, as partial trees have whole weights.
    [[nodiscard]] std::uint64_t Get(NodeIndex node, const Set& set, std::uint64_t setPart) const
    {
        const NodePart& part = mParts[node];
        std::uint64_t joined = 0;
        for (std::uint32_t place = part.firstCharge; place < part.endCharge; ++place) {
            if (mCharges[place].set.IsSubsetOf(set))
                joined += mCharges[place].price;
        }
        if (!set.Contains(mRootBit))
            return RoundUp(setPart + joined + part.pathFromRoot, mGrainShift);
        return RoundUp(setPart + joined - part.total + part.pathToSearchRoot, mGrainShift);
    }

private:
    struct Charge
    {
        Set set;
        std::uint64_t price;
    };
    /// Where the charges at a node stand, what they add up to, and what the paths between it and
    /// the roots pay.
    struct NodePart
    {
        std::uint32_t firstCharge = 0;
        std::uint32_t endCharge = 0;
        std::uint64_t total = 0;
        std::uint64_t pathFromRoot = 0;
        std::uint64_t pathToSearchRoot = 0;
    };
    /// A node of the set that grows, and what the set had been charged when the node came in or was
    /// charged last.
    struct Grown
    {
        NodeIndex node;
        std::uint64_t priceBefore;
    };
    struct LastCharge
    {
        SetIndex set;
        std::uint32_t place = 0;
    };
    struct NumberedCharge
    {
        NodeIndex node;
        SetIndex set;
        std::uint64_t price;
    };

    void ChargeGrown();

    const FlatNetwork& mNetwork;
    NodeIndex mSearchRoot;
    std::uint32_t mGrainShift = 0;
    /// The number that the ascent's root has among the terminals.
    std::uint32_t mRootBit = 0;
    IndexedVector<NodeIndex, std::uint32_t> mBits;
    SetTable<Words> mSets;
    IndexedVector<SetIndex, std::uint64_t> mPrices;
    std::vector<NumberedCharge> mRaised;
    /// The last charge at each node, and its place in mRaised.
    IndexedVector<NodeIndex, LastCharge> mLast;
    /// The set that was raised last, and the terminals in it. Its nodes are charged when other
    /// terminals come in, all at once.
    std::vector<Grown> mGrown;
    std::uint64_t mGrownPrice = 0;
    Set mGrownTerminals;
    SetIndex mGrownSet;
    IndexedVector<NodeIndex, NodePart> mParts;
    std::vector<Charge> mCharges;
};

} // namespace qe::graph

#endif
