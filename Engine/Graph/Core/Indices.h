#ifndef ENGINE_GRAPH_CORE_INDICES_H
#define ENGINE_GRAPH_CORE_INDICES_H

#include <compare>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace qe::graph {

/// Value of an index that names nothing.
inline constexpr std::uint32_t kNoIndex = std::numeric_limits<std::uint32_t>::max();

/// Position of a node in the graph or network at hand, counted from zero.
struct NodeIndex
{
    std::uint32_t value = kNoIndex;

    [[nodiscard]] bool IsValid() const { return value != kNoIndex; }
    friend auto operator<=>(const NodeIndex&, const NodeIndex&) = default;
};

/// Position of an edge in the graph or network at hand, counted from zero.
struct EdgeIndex
{
    std::uint32_t value = kNoIndex;

    [[nodiscard]] bool IsValid() const { return value != kNoIndex; }
    friend auto operator<=>(const EdgeIndex&, const EdgeIndex&) = default;
};

/// One direction of an edge: half-edge 2e leads from the first end of edge e to the second,
/// half-edge 2e + 1 back.
struct HalfEdge
{
    std::uint32_t value = kNoIndex;

    /// Returns the half-edge from the first end to the second.
    [[nodiscard]] static HalfEdge Forward(EdgeIndex edge) { return {2 * edge.value}; }
    /// Returns the half-edge from the second end to the first.
    [[nodiscard]] static HalfEdge Backward(EdgeIndex edge) { return {2 * edge.value + 1}; }

    [[nodiscard]] EdgeIndex Edge() const { return {value / 2}; }
    [[nodiscard]] HalfEdge Reversed() const { return {value ^ 1U}; }

    [[nodiscard]] bool IsValid() const { return value != kNoIndex; }
    friend auto operator<=>(const HalfEdge&, const HalfEdge&) = default;
};

/// The indices 0 to count - 1, to go through.
template <typename Index>
class IndexRange
{
public:
    explicit IndexRange(std::uint32_t count) : mCount(count) {}

    class Iterator
    {
    public:
        explicit Iterator(std::uint32_t value) : mValue(value) {}

        Index operator*() const { return {mValue}; }
        Iterator& operator++()
        {
            ++mValue;
            return *this;
        }
        friend bool operator==(const Iterator&, const Iterator&) = default;

    private:
        std::uint32_t mValue;
    };

    [[nodiscard]] Iterator begin() const { return Iterator(0); }
    [[nodiscard]] Iterator end() const { return Iterator(mCount); }

private:
    std::uint32_t mCount;
};

/// A vector that is indexed by one kind of index only. Otherwise like std::vector.
template <typename Index, typename Value>
class IndexedVector
{
public:
    IndexedVector() = default;
    explicit IndexedVector(std::size_t count, const Value& value = Value()) : mValues(count, value)
    {}

    [[nodiscard]] Value& operator[](Index index) { return mValues[index.value]; }
    [[nodiscard]] const Value& operator[](Index index) const { return mValues[index.value]; }

    [[nodiscard]] bool empty() const { return mValues.empty(); }
    [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(mValues.size()); }
    [[nodiscard]] auto begin() const { return mValues.begin(); }
    [[nodiscard]] auto end() const { return mValues.end(); }

    void assign(std::size_t count, const Value& value) { mValues.assign(count, value); }
    void resize(std::size_t count) { mValues.resize(count); }
    void reserve(std::size_t count) { mValues.reserve(count); }
    void push_back(Value value) { mValues.push_back(std::move(value)); }

private:
    std::vector<Value> mValues;
};

} // namespace qe::graph

#endif
