#include "Engine/Graph/Spanning/BottleneckForest.h"

#include <utility>

namespace qe::graph {

void BottleneckForest::Reset(std::uint32_t nodeCount)
{
    mNodes.resize(nodeCount);
    for (std::uint32_t node = 0; node < nodeCount; ++node)
        mNodes[node] = {node, kNotConnected, 1};
}

std::uint32_t BottleneckForest::FindRoot(std::uint32_t node) const
{
    while (mNodes[node].parent != node)
        node = mNodes[node].parent;
    return node;
}

bool BottleneckForest::Unite(std::uint32_t left, std::uint32_t right, std::uint32_t step)
{
    left = FindRoot(left);
    right = FindRoot(right);
    if (left == right)
        return false;
    if (mNodes[left].size < mNodes[right].size)
        std::swap(left, right);
    mNodes[right].parent = left;
    mNodes[right].step = step;
    mNodes[left].size += mNodes[right].size;
    return true;
}

std::uint32_t BottleneckForest::FindLastStep(std::uint32_t left, std::uint32_t right) const
{
    // Steps never fall towards the root, so climbing from whichever node got its parent earlier
    // meets at the lowest set that holds both.
    std::uint32_t last = kNotConnected;
    while (left != right) {
        if (mNodes[left].step > mNodes[right].step)
            std::swap(left, right);
        last = mNodes[left].step;
        if (last == kNotConnected)
            break;
        left = mNodes[left].parent;
    }
    return last;
}

} // namespace qe::graph
