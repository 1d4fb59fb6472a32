#ifndef ENGINE_GRAPH_STEINER_NETWORK_TERMINALSET_H
#define ENGINE_GRAPH_STEINER_NETWORK_TERMINALSET_H

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace qe::graph {

/// A set of terminals, by number, of at most 64 * Words.
template <std::size_t Words>
struct TerminalSet
{
    std::array<std::uint64_t, Words> words{};

    static constexpr std::uint32_t kCapacity = 64 * Words;

    [[nodiscard]] static TerminalSet Single(std::uint32_t bit)
    {
        TerminalSet set;
        set.Add(bit);
        return set;
    }

    void Add(std::uint32_t bit) { words[bit / 64] |= std::uint64_t{1} << (bit % 64); }

    [[nodiscard]] bool Contains(std::uint32_t bit) const
    {
        return ((words[bit / 64] >> (bit % 64)) & 1U) != 0;
    }

    [[nodiscard]] bool Intersects(const TerminalSet& other) const
    {
        std::uint64_t common = 0;
        for (std::size_t word = 0; word < Words; ++word)
            common |= words[word] & other.words[word];
        return common != 0;
    }

    [[nodiscard]] bool IsSubsetOf(const TerminalSet& other) const
    {
        std::uint64_t beyond = 0;
        for (std::size_t word = 0; word < Words; ++word)
            beyond |= words[word] & ~other.words[word];
        return beyond == 0;
    }

    [[nodiscard]] TerminalSet Union(const TerminalSet& other) const
    {
        TerminalSet set;
        for (std::size_t word = 0; word < Words; ++word)
            set.words[word] = words[word] | other.words[word];
        return set;
    }

    [[nodiscard]] TerminalSet Without(const TerminalSet& other) const
    {
        TerminalSet set;
        for (std::size_t word = 0; word < Words; ++word)
            set.words[word] = words[word] & ~other.words[word];
        return set;
    }

    /// Returns the smallest number in the set, which is not empty.
    [[nodiscard]] std::uint32_t GetLowest() const
    {
        std::size_t word = 0;
        while (words[word] == 0)
            ++word;
        return static_cast<std::uint32_t>(64 * word) +
               static_cast<std::uint32_t>(std::countr_zero(words[word]));
    }

    /// Returns whether the smallest number of the two sets, which are not empty, is in this one.
    [[nodiscard]] bool IsLower(const TerminalSet& other) const
    {
        std::size_t word = 0;
        while ((words[word] | other.words[word]) == 0)
            ++word;
        const std::uint64_t both = words[word] | other.words[word];
        return (words[word] & both & (~both + 1)) != 0;
    }

    [[nodiscard]] std::uint32_t GetSize() const
    {
        std::uint32_t size = 0;
        for (const std::uint64_t word : words)
            size += static_cast<std::uint32_t>(std::popcount(word));
        return size;
    }

    [[nodiscard]] std::uint64_t GetHash() const
    {
        std::uint64_t hash = 0;
        for (const std::uint64_t word : words) {
            hash = (hash ^ word) * 0x9E3779B97F4A7C15U;
            hash ^= hash >> 29;
        }
        return hash;
    }

    friend bool operator==(const TerminalSet& left, const TerminalSet& right)
    {
        std::uint64_t difference = 0;
        for (std::size_t word = 0; word < Words; ++word)
            difference |= left.words[word] ^ right.words[word];
        return difference == 0;
    }
};

} // namespace qe::graph

#endif
