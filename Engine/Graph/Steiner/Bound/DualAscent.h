#ifndef ENGINE_GRAPH_STEINER_BOUND_DUALASCENT_H
#define ENGINE_GRAPH_STEINER_BOUND_DUALASCENT_H

#include "Engine/Graph/Core/Indices.h"
#include "Engine/Graph/Steiner/Network/FlatNetwork.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

namespace qe::graph {

class Budget;

/// Position of a half-edge in an order in which those into one node follow one another.
struct ArcSlot
{
    std::uint32_t value = kNoIndex;
    friend auto operator<=>(const ArcSlot&, const ArcSlot&) = default;
};

/// Returns the least whole weight that is no less than so many grains.
[[nodiscard]] constexpr std::uint64_t RoundUp(std::uint64_t grains, std::uint32_t grainShift)
{
    return (grains + (std::uint64_t{1} << grainShift) - 1) >> grainShift;
}

/// A set of nodes without the root that every tree must enter for the terminals in it, and what
/// entering it is charged. The spans are good during the call.
struct RaisedCut
{
    std::span<const NodeIndex> nodes;
    /// So many of the first nodes are the set that was raised last; 0 when that was another one.
    std::size_t raisedBefore = 0;
    /// The slots of the arcs into the set.
    std::span<const ArcSlot> entering;
    /// The price that these have just been charged, in grains.
    std::uint64_t price = 0;
};

/// Listens to the cuts that a dual ascent raises.
class CutObserver
{
public:
    virtual ~CutObserver() = default;
    virtual void Raise(const RaisedCut& cut) = 0;
};

/// Proves a lower bound for the weight of every Steiner tree, by raising prices on directed cuts:
/// Wong's dual ascent (1984).
///
/// A tree directed away from the root enters every set of nodes that contains a terminal but not
/// the root. The ascent finds such a set that can be reached only by arcs with some
/// weight left, charges the least of it to all of them, and goes on until every terminal can be
/// reached from the root by arcs with nothing left. The charges add up to the bound; what is
/// left, the reduced weights, is by how much more a tree weighs at least when it uses an arc.
/// Small sets go first (Poggi de Aragao, Uchoa and Werneck 2001), ties go to the smaller
/// terminal.
///
/// Sets grow against the arcs, so what belongs to the arcs into one node stands together, by slot.
class DualAscent
{
public:
    /// Keeps a reference to the network. Prices, the bound and the reduced weights are counted in
    /// grains, of which 2^grainShift make up one of weight: where weights are small, only fractions
    /// of them add up to a good bound.
    explicit DualAscent(const FlatNetwork& network, std::uint32_t grainShift = 0);

    /// Runs with the given root and replaces what was known. Stops early, with a bound that is
    /// valid but weaker, when the budget runs out.
    ///
    /// A light tree, when given, guides the ascent: where its bound is tight, every set that pays
    /// is entered by a minimum Steiner tree once, so sets that the given tree enters more often
    /// wait.
    void Run(NodeIndex root, std::span<const EdgeIndex> guide, Budget& budget,
             CutObserver* observer = nullptr);

    /// Goes on with the terminals that the root does not reach, in a random order and without
    /// heed of sizes. Stops early when the budget runs out.
    void Resume(std::mt19937& random, Budget& budget, CutObserver& observer);

    /// Takes the price of a cut that was raised back from the arcs into it.
    void TakeBack(std::span<const ArcSlot> entering, std::uint64_t price);
    /// Charges the price of a cut that was taken back once more.
    void Charge(std::span<const ArcSlot> entering, std::uint64_t price);

    [[nodiscard]] NodeIndex GetRoot() const { return mRoot; }
    [[nodiscard]] std::uint32_t GetGrainShift() const { return mGrainShift; }
    /// Returns the bound in grains.
    [[nodiscard]] std::uint64_t GetBound() const { return mBound; }
    /// Returns the bound as a weight: rounded up, as trees have whole weights.
    [[nodiscard]] std::uint64_t GetBoundWeight() const { return RoundUp(mBound, mGrainShift); }
    /// Returns how many half-edges have been looked at, over all runs: what they cost, by a measure
    /// that is the same on every machine.
    [[nodiscard]] std::uint64_t GetWork() const { return mWork; }
    /// Returns the reduced weight of going along the half-edge, in grains.
    [[nodiscard]] std::uint64_t GetReduced(HalfEdge half) const { return mReduced[mSlots[half]]; }

private:
    using NodeMarks = IndexedVector<NodeIndex, std::uint8_t>;

    enum class EOutcome
    {
        Finished,
        Paused,
    };
    struct Entry
    {
        std::uint64_t cost;
        NodeIndex terminal;
        friend auto operator<=>(const Entry&, const Entry&) = default;
    };

    EOutcome Ascend(Entry& entry, std::uint64_t costLimit, CutObserver* observer);
    void SetGuide(std::span<const EdgeIndex> guide);
    [[nodiscard]] std::uint64_t GetCost() const;
    bool Spread(NodeIndex terminal);
    [[nodiscard]] std::vector<NodeIndex> ChooseRepresentatives(std::mt19937& random);
    void MarkFrom(NodeIndex node, NodeMarks& marks);
    void RaiseCut(CutObserver* observer);

    const FlatNetwork& mNetwork;
    std::uint32_t mGrainShift;
    NodeIndex mRoot;
    std::uint64_t mBound = 0;
    std::uint64_t mWork = 0;
    /// Slot of each half-edge.
    IndexedVector<HalfEdge, ArcSlot> mSlots;
    /// First slot at each node, and behind the last.
    std::vector<std::uint32_t> mFirstSlot;
    /// Node that the half-edge of each slot leaves.
    IndexedVector<ArcSlot, NodeIndex> mOrigins;
    IndexedVector<ArcSlot, std::uint64_t> mReduced;
    NodeMarks mIsActive;
    /// Nodes known to be reached from the root by arcs with nothing left: a set that meets one
    /// would come upon the root.
    NodeMarks mIsReached;
    NodeMarks mIsRepresented;
    std::vector<NodeIndex> mOpen;
    /// Slots by which the guiding tree leads away from the root.
    IndexedVector<ArcSlot, std::uint8_t> mIsGuide;
    /// The set at hand: its nodes, how many of them have been spread from and how many were raised
    /// last, and the slots that lead into it with some weight left.
    std::vector<NodeIndex> mSet;
    std::size_t mSpread = 0;
    std::size_t mRaisedBefore = 0;
    std::vector<ArcSlot> mEntering;
    IndexedVector<NodeIndex, std::uint32_t> mStamps;
    std::uint32_t mStamp = 0;
};

} // namespace qe::graph

#endif
