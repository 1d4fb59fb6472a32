#ifndef TESTS_FUZZ_BYTEREADER_H
#define TESTS_FUZZ_BYTEREADER_H

#include <cstddef>
#include <string_view>
#include <vector>

namespace qe::test {

/// Makes choices of bytes, one byte each. Behind the last byte every choice is 0, so that all
/// inputs mean something.
class ByteReader
{
public:
    /// Refers to the bytes.
    explicit ByteReader(std::string_view bytes) : mBytes(bytes) {}

    /// Returns a number below the bound, which is at least 1.
    std::size_t Below(std::size_t bound)
    {
        if (mBytes.empty())
            return 0;
        const auto byte = static_cast<unsigned char>(mBytes.front());
        mBytes.remove_prefix(1);
        return byte % bound;
    }

    bool Flag() { return Below(2) != 0; }

    template <typename T>
    const T& Pick(const std::vector<T>& from)
    {
        return from[Below(from.size())];
    }

    /// Returns fewer than `bound` of them, perhaps some twice.
    template <typename T>
    std::vector<T> PickSome(const std::vector<T>& from, std::size_t bound)
    {
        std::vector<T> picked;
        for (std::size_t count = from.empty() ? 0 : Below(bound); count > 0; --count)
            picked.push_back(Pick(from));
        return picked;
    }

private:
    std::string_view mBytes;
};

} // namespace qe::test

#endif
