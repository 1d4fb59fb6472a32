#include "Engine/Graph/Spanning/SpanningTreeCount.h"

#include "Engine/Graph/Core/DisjointSets.h"
#include "Engine/Graph/Core/SaturatingCount.h"

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace qe::graph {

namespace {

__extension__ using Wide = unsigned __int128;

/// A number modulo the greatest prime below 2^64.
class Residue
{
public:
    static constexpr std::uint64_t kPrime = 18446744073709551557U;

    Residue(std::uint64_t value = 0) : mValue(value % kPrime) {}

    [[nodiscard]] std::uint64_t Get() const { return mValue; }

    friend Residue operator+(Residue left, Residue right)
    {
        return static_cast<std::uint64_t>((Wide{left.mValue} + right.mValue) % kPrime);
    }
    friend Residue operator*(Residue left, Residue right)
    {
        return static_cast<std::uint64_t>(Wide{left.mValue} * right.mValue % kPrime);
    }
    /// Divides by Fermat's little theorem.
    friend Residue operator/(Residue left, Residue right)
    {
        for (std::uint64_t exponent = kPrime - 2; exponent > 0; exponent /= 2) {
            if (exponent % 2 == 1)
                left = left * right;
            right = right * right;
        }
        return left;
    }
    friend bool operator==(Residue left, Residue right) = default;

private:
    std::uint64_t mValue;
};

template <typename Number>
using Matrix = std::vector<std::vector<Number>>;

/// Returns numbers whose product is the number of spanning trees of a connected graph, which is
/// given by how many edges join each two nodes. Takes out node after node and gives its neighbours
/// edges among each other instead (star-mesh transform), which needs no subtraction, so that
/// floating-point numbers stay close.
template <typename Number>
std::vector<Number> FindFactors(Matrix<Number> edges)
{
    std::vector<Number> factors;
    for (; edges.size() > 1; edges.pop_back()) {
        const std::size_t last = edges.size() - 1;
        Number sum = 0;
        for (std::size_t node = 0; node < last; ++node)
            sum = sum + edges[last][node];
        factors.push_back(sum);
        if (sum == Number(0))
            break;
        const Number share = Number(1) / sum;
        for (std::size_t node = 0; node < last; ++node) {
            const Number factor = edges[last][node] * share;
            for (std::size_t other = 0; other < last && !(factor == Number(0)); ++other) {
                if (other != node)
                    edges[node][other] = edges[node][other] + factor * edges[last][other];
            }
        }
    }
    return factors;
}

/// The graph of the parts that links of one weight join.
class PartGraph
{
public:
    explicit PartGraph(std::uint32_t partCount)
        : mResidues(partCount, std::vector<Residue>(partCount)),
          mValues(partCount, std::vector<double>(partCount))
    {}

    void Add(std::uint32_t part1, std::uint32_t part2, std::uint64_t multiplicity)
    {
        for (const auto& [row, column] : {std::pair(part1, part2), std::pair(part2, part1)}) {
            mResidues[row][column] = mResidues[row][column] + multiplicity;
            mValues[row][column] += static_cast<double>(multiplicity);
        }
    }

    /// Returns the number of spanning trees. A small one is what its floating-point value is next
    /// to. Another is its residue, when its logarithm tells that it is below the prime; close to
    /// it, the residue of a greater number would be small.
    [[nodiscard]] std::uint64_t CountTrees() const
    {
        // Factors are off by some 2^-50 for each node at most, and nodes are below 2^10.
        constexpr double kSurelyNext = 30;
        constexpr double kSurelyAbove = 64.01;
        constexpr double kClose = 63.5;
        double logarithm = 0;
        for (const double factor : FindFactors(mValues))
            logarithm += std::log2(factor);
        if (logarithm < kSurelyNext)
            return static_cast<std::uint64_t>(std::llround(std::exp2(logarithm)));
        if (logarithm > kSurelyAbove)
            return kSaturatedCount;
        Residue product = 1;
        for (const Residue factor : FindFactors(mResidues))
            product = product * factor;
        const bool isAbove = logarithm > kClose && product.Get() < std::uint64_t{1} << 63;
        return isAbove ? kSaturatedCount : product.Get();
    }

private:
    Matrix<Residue> mResidues;
    Matrix<double> mValues;
};

/// Numbers the parts within each group of them that links of the weight at hand join.
class PartGroups
{
public:
    PartGroups(DisjointSets& lighter, std::uint32_t nodeCount, std::span<const Link> links);

    /// Returns the steps that counting takes.
    [[nodiscard]] std::uint64_t GetSteps() const;
    [[nodiscard]] std::uint64_t CountTrees(DisjointSets& lighter, std::span<const Link> links);

private:
    DisjointSets mJoined;
    /// For each part, by the node that stands for it, its number in its group.
    std::vector<std::uint32_t> mNumbers;
    /// For each group, by the node that stands for it, how many parts it has.
    std::vector<std::uint32_t> mSizes;
};

PartGroups::PartGroups(DisjointSets& lighter, std::uint32_t nodeCount, std::span<const Link> links)
    : mJoined(nodeCount), mNumbers(nodeCount, kNoIndex), mSizes(nodeCount, 0)
{
    for (const Link& link : links)
        mJoined.Unite(lighter.Find(link.end1.value), lighter.Find(link.end2.value));
    for (const Link& link : links) {
        for (const NodeIndex end : {link.end1, link.end2}) {
            const std::uint32_t part = lighter.Find(end.value);
            if (mNumbers[part] == kNoIndex)
                mNumbers[part] = mSizes[mJoined.Find(part)]++;
        }
    }
}

std::uint64_t PartGroups::GetSteps() const
{
    std::uint64_t steps = 0;
    for (const std::uint64_t size : mSizes)
        steps += size * size * size;
    return steps;
}

std::uint64_t PartGroups::CountTrees(DisjointSets& lighter, std::span<const Link> links)
{
    std::vector<std::optional<PartGraph>> graphs(mSizes.size());
    for (const Link& link : links) {
        const std::uint32_t part1 = lighter.Find(link.end1.value);
        const std::uint32_t part2 = lighter.Find(link.end2.value);
        const std::uint32_t group = mJoined.Find(part1);
        if (part1 == part2)
            continue;
        if (!graphs[group])
            graphs[group].emplace(mSizes[group]);
        graphs[group]->Add(mNumbers[part1], mNumbers[part2], link.multiplicity);
    }
    std::uint64_t count = 1;
    for (const std::optional<PartGraph>& graph : graphs)
        count = MultiplyCounts(count, graph ? graph->CountTrees() : 1);
    return count;
}

} // namespace

std::optional<std::uint64_t> CountMinimumSpanningTrees(std::uint32_t nodeCount,
                                                       std::span<const Link> links,
                                                       std::uint64_t mostSteps)
{
    DisjointSets parts(nodeCount);
    std::uint64_t count = 1;
    std::uint64_t steps = 0;
    while (!links.empty()) {
        std::size_t size = 1;
        while (size < links.size() && links[size].weight == links.front().weight)
            ++size;
        const std::span<const Link> equal = links.first(size);
        links = links.subspan(size);
        if (size == 1) {
            if (parts.Unite(equal[0].end1.value, equal[0].end2.value))
                count = MultiplyCounts(count, equal[0].multiplicity);
            continue;
        }
        PartGroups groups(parts, nodeCount, equal);
        steps += nodeCount + groups.GetSteps();
        if (steps > mostSteps)
            return std::nullopt;
        count = MultiplyCounts(count, groups.CountTrees(parts, equal));
        for (const Link& link : equal)
            parts.Unite(link.end1.value, link.end2.value);
    }
    return count;
}

} // namespace qe::graph
