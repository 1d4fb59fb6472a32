#ifndef ENGINE_GRAPH_STEINER_LIST_DERIVATIONGRAPH_H
#define ENGINE_GRAPH_STEINER_LIST_DERIVATIONGRAPH_H

#include "Engine/Graph/Steiner/Network/StrandPool.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qe::graph {

/// All lightest trees of a network in one acyclic graph of parts and choices.
///
/// A part is made in one of several ways; each way is a strand, or none, and up to two smaller
/// parts. Each tree is derived exactly once, so the products and sums of the counts number the
/// trees: any of them can be laid out by its rank without listing those before it.
class DerivationGraph
{
public:
    static constexpr std::uint32_t None = 0xFFFFFFFF;

    explicit DerivationGraph(const StrandPool& strands) : mStrands(&strands) {}

    /// Begins a part; the choices added from now on are its.
    std::uint32_t AddPart();
    /// Adds a way to make the part begun last: through a strand and one part.
    void AddStep(StrandIndex strand, std::uint32_t part);
    /// Adds a way to make the part begun last: from two parts; `second` may be None.
    void AddJoin(std::uint32_t first, std::uint32_t second);
    /// Adds the way to make the part begun last from nothing.
    void AddEmpty();

    /// Answers in how many ways the part is made, at most 2^64 - 1.
    [[nodiscard]] std::uint64_t GetCount(std::uint32_t part) const { return mParts[part].count; }

    /// Appends the edges of the part, made in the way number `rank`, which is below the count.
    void AppendEdges(std::uint32_t part, std::uint64_t rank, std::vector<EdgeIndex>& edges) const;

    [[nodiscard]] std::size_t GetBytes() const
    {
        return mParts.capacity() * sizeof(Part) + mChoices.capacity() * sizeof(Choice);
    }

private:
    struct Part
    {
        std::uint32_t firstChoice;
        std::uint64_t count;
    };
    struct Choice
    {
        std::uint32_t strand;
        std::uint32_t first;
        std::uint32_t second;
        std::uint64_t count;
    };

    void AddChoice(std::uint32_t strand, std::uint32_t first, std::uint32_t second);

    const StrandPool* mStrands;
    std::vector<Part> mParts;
    std::vector<Choice> mChoices;
};

} // namespace qe::graph

#endif
