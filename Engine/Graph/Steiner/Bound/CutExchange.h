#ifndef ENGINE_GRAPH_STEINER_BOUND_CUTEXCHANGE_H
#define ENGINE_GRAPH_STEINER_BOUND_CUTEXCHANGE_H

#include "Engine/Graph/Core/Dijkstra.h"
#include "Engine/Graph/Steiner/Bound/DualAscent.h"
#include "Engine/Graph/Steiner/Network/FlatNetwork.h"

#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

namespace qe::graph {

class Budget;

/// Improves the lower bound of a dual ascent by exchanging cuts.
///
/// An ascent ends where no cut can be raised any more, but what it proves depends on the order in
/// which it raised them. An exchange takes back many of the cuts around a few terminals that lie
/// near each other, and lets the ascent go on from there in another order. It stays when the
/// bound is no less, for it takes a walk over equal bounds to find the next better one: a large
/// neighbourhood search (Shaw 1998) among the solutions of the dual of the directed cut
/// relaxation. Where that relaxation is nearly tight, as in graphs that lie in the plane, the
/// bound comes near to the optimum. Where weights are small, that takes prices that are fractions
/// of them: so cuts are priced in grains then, and kept in pieces, which are exchanged one by one.
///
/// The same network, root and guide give the same sequence of exchanges.
class CutExchange : private CutObserver
{
public:
    /// Bounds the optimum by an ascent from the root, guided by a light tree. Keeps references to
    /// network and budget, and charges the budget for the cuts it holds.
    CutExchange(const FlatNetwork& network, NodeIndex root, std::span<const EdgeIndex> guide,
                Budget& budget);
    CutExchange(const CutExchange&) = delete;
    CutExchange& operator=(const CutExchange&) = delete;
    ~CutExchange() override;

    enum class EOutcome
    {
        Promising,
        Stuck,
    };
    /// Exchanges cuts for about so much work, as the ascent counts it. Stops early, stuck, when
    /// that closes little more of the gap between the bound and a weight that some tree has.
    EOutcome Improve(std::uint64_t knownWeight, std::uint64_t work);
    /// Exchanges cuts for so much work, whatever comes of it, unless the bound is as much as
    /// the weight or the budget runs out.
    void ImproveToTheEnd(std::uint64_t knownWeight, std::uint64_t work);

    /// Returns whether the weights of the network are so small that prices are fractions of them.
    [[nodiscard]] static bool IsFine(const FlatNetwork& network);

    /// Returns the ascent with its bound and reduced weights as the cuts at hand make them.
    [[nodiscard]] const DualAscent& GetAscent() const { return mAscent; }

    /// Raises the cuts at hand before the observer.
    void Report(CutObserver& observer) const;

private:
    struct Cut
    {
        std::vector<NodeIndex> nodes;
        std::vector<ArcSlot> entering;
        std::vector<NodeIndex> terminals;
        std::uint64_t price;
    };

    void Raise(const RaisedCut& raised) override;
    void Keep(Cut cut);
    EOutcome ExchangeBatch(std::uint64_t knownWeight);
    void Exchange();
    void ChooseTerminals();
    [[nodiscard]] std::vector<NodeIndex> FindNearest(NodeIndex terminal);
    void SetAside();
    void Restore(std::size_t kept);
    void Discharge(const Cut& cut);
    [[nodiscard]] static std::size_t GetBytes(const Cut& cut);

    const FlatNetwork& mNetwork;
    Budget& mBudget;
    DualAscent mAscent;
    /// The greatest price of a piece of a cut.
    std::uint64_t mMostPrice;
    /// Around how many terminals at most an exchange takes cuts back.
    std::size_t mMostChosen;
    DijkstraSearch mSearch;
    std::vector<Cut> mCuts;
    /// What the exchange at hand took back, and then what it leaves to be dropped.
    std::vector<Cut> mAside;
    /// For each terminal those nearest to it, itself first; found when first asked for.
    std::vector<std::vector<NodeIndex>> mNearest;
    IndexedVector<NodeIndex, std::uint8_t> mIsChosen;
    std::mt19937 mRandom;
    std::size_t mCharged = 0;
};

} // namespace qe::graph

#endif
