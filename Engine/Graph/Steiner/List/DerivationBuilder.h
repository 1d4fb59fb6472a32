#ifndef ENGINE_GRAPH_STEINER_LIST_DERIVATIONBUILDER_H
#define ENGINE_GRAPH_STEINER_LIST_DERIVATIONBUILDER_H

#include "Engine/Graph/Steiner/List/Derivations.h"
#include "Engine/Graph/Steiner/List/TreeFamily.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

class Budget;

/// Puts all derivations of a search into one graph, from which the trees are counted and listed.
class DerivationBuilder
{
public:
    /// Takes the strand of each edge of the network. Keeps references to derivations and budget,
    /// and the span.
    DerivationBuilder(Derivations& derivations, std::span<const StrandIndex> strands,
                      Budget& budget);
    DerivationBuilder(const DerivationBuilder&) = delete;
    DerivationBuilder& operator=(const DerivationBuilder&) = delete;
    ~DerivationBuilder();

    enum class EOutcome
    {
        Complete,
        Exhausted,
    };
    /// Fills the graph. Returns Complete when it holds all minimum Steiner trees; else it is of no
    /// use.
    EOutcome Build(DerivationGraph& graph);

    /// Returns the part of the graph that is the whole tree.
    [[nodiscard]] PartIndex GetWhole() const { return mWhole; }

private:
    /// A label that minimum trees use, with what stands for it in the graph.
    struct Item
    {
        LabelIndex label;
        PartIndex branch = {};
        PartIndex part = {};
    };

    bool Collect();
    void Visit(LabelIndex label);
    [[nodiscard]] Item& GetItem(LabelIndex label) { return mItems[mItemOfLabel[label]]; }
    void AddParts(Item& item, DerivationGraph& graph);

    Derivations& mDerivations;
    std::span<const StrandIndex> mStrands;
    Budget& mBudget;
    IndexedVector<LabelIndex, std::uint32_t> mItemOfLabel;
    std::vector<Item> mItems;
    PartIndex mWhole;
    std::size_t mCharged = 0;
};

} // namespace qe::graph

#endif
