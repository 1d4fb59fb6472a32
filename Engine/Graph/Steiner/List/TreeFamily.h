#ifndef ENGINE_GRAPH_STEINER_LIST_TREEFAMILY_H
#define ENGINE_GRAPH_STEINER_LIST_TREEFAMILY_H

#include "Engine/Graph/Core/Indices.h"
#include "Engine/Graph/Steiner/Network/StrandPool.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <variant>
#include <vector>

namespace qe::graph {

/// Position of a part in a DerivationGraph.
struct PartIndex
{
    std::uint32_t value = kNoIndex;

    [[nodiscard]] bool IsValid() const { return value != kNoIndex; }
    friend auto operator<=>(const PartIndex&, const PartIndex&) = default;
};

/// All minimum Steiner trees of a network in one acyclic graph of parts and choices.
///
/// A part stands for one of several choices; each choice is a strand, or none, and up to two
/// smaller parts. Each tree is derived exactly once, so the products and sums of the counts number
/// the trees: any of them can be expanded by its rank without listing those before it.
class DerivationGraph
{
public:
    /// Keeps a pointer to the strands.
    explicit DerivationGraph(const StrandPool& strands) : mStrands(&strands) {}

    /// Begins a part; the choices added from now on are its.
    PartIndex AddPart();
    /// Adds a choice to the part begun last: a strand and one part.
    void AddStep(StrandIndex strand, PartIndex part);
    /// Adds a choice to the part begun last: two parts; `second` may be invalid.
    void AddJoin(PartIndex first, PartIndex second);
    /// Adds a choice to the part begun last: nothing.
    void AddEmpty();

    /// Returns how many edge sets the part stands for, at most 2^64 - 1.
    [[nodiscard]] std::uint64_t GetCount(PartIndex part) const { return mParts[part.value].count; }

    /// Returns the bytes taken.
    [[nodiscard]] std::size_t GetBytes() const
    {
        return mParts.capacity() * sizeof(Part) + mChoices.capacity() * sizeof(Choice);
    }

    /// Appends the edge set number `rank` of the part; the rank is below the count.
    void AppendEdges(PartIndex part, std::uint64_t rank, std::vector<EdgeIndex>& edges) const;

private:
    struct Part
    {
        std::size_t firstChoice;
        std::uint64_t count;
    };
    struct Choice
    {
        StrandIndex strand;
        PartIndex first;
        PartIndex second;
        std::uint64_t count;
    };

    void AddChoice(StrandIndex strand, PartIndex first, PartIndex second);

    const StrandPool* mStrands;
    std::vector<Part> mParts;
    std::vector<Choice> mChoices;
};

/// Some of the trees of one block, edge by edge, where going through all of them would be too much.
class ListedTrees
{
public:
    void Add(std::span<const EdgeIndex> edges);

    [[nodiscard]] std::size_t GetCount() const { return mEnds.size(); }
    [[nodiscard]] std::span<const EdgeIndex> GetTree(std::size_t place) const;
    [[nodiscard]] std::size_t GetBytes() const
    {
        return mEdges.capacity() * sizeof(EdgeIndex) + mEnds.capacity() * sizeof(std::size_t);
    }

private:
    std::vector<EdgeIndex> mEdges;
    /// Where each tree ends among the edges.
    std::vector<std::size_t> mEnds;
};

/// All trees that take one piece from each of several independent families: fixed strands, and
/// the minimum Steiner trees of the blocks. Trees are numbered by mixed radix over the pieces.
class TreeFamily
{
public:
    /// Keeps a pointer to the strands.
    explicit TreeFamily(const StrandPool& strands) : mStrands(&strands) {}

    /// Sets how many trees of a block need a number at most; 1 at first.
    void SetMostNumbered(std::size_t count) { mMostNumbered = count; }
    [[nodiscard]] std::size_t GetMostNumbered() const { return mMostNumbered; }

    void AddStrand(StrandIndex strand);
    /// Adds all that one part of the graph stands for.
    void AddDerivations(DerivationGraph&& graph, PartIndex part);
    /// Adds trees of a block, one at least; the block has `count` trees.
    void AddListed(ListedTrees&& trees, std::uint64_t count);

    /// Returns the number of trees, at most 2^64 - 1.
    [[nodiscard]] std::uint64_t GetCount() const { return mCount; }

    /// Returns how many of them have a number: fewer than there are where trees of a block were
    /// listed, not all of them.
    [[nodiscard]] std::uint64_t GetNumberedCount() const { return mNumberedCount; }

    /// Returns the edges of the tree with that number in ascending order. Numbers begin with 0.
    [[nodiscard]] std::vector<EdgeIndex> GetTree(std::uint64_t number) const;

private:
    struct Derived
    {
        DerivationGraph graph;
        PartIndex part;
    };
    using Block = std::variant<Derived, ListedTrees>;

    static void AppendEdges(const Block& block, std::uint64_t number,
                            std::vector<EdgeIndex>& edges);
    [[nodiscard]] static std::uint64_t GetNumberedCount(const Block& block);
    void AddBlock(Block&& block, std::uint64_t count);

    const StrandPool* mStrands;
    std::vector<StrandIndex> mFixed;
    std::vector<Block> mBlocks;
    std::size_t mMostNumbered = 1;
    std::uint64_t mCount = 1;
    std::uint64_t mNumberedCount = 1;
};

} // namespace qe::graph

#endif
