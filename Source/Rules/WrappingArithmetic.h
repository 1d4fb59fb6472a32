#ifndef SOURCE_RULES_WRAPPINGARITHMETIC_H
#define SOURCE_RULES_WRAPPINGARITHMETIC_H

#include <cstdint>

namespace qe {

/// Keeps the low 32 bits, as a signed number. Weights are summed and scaled without a check for
/// overflow; computing them in 64 bits and cutting the result keeps that defined.
[[nodiscard]] constexpr std::int32_t WrapTo32(std::int64_t value)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

[[nodiscard]] constexpr std::int32_t AddWrapping(std::int32_t left, std::int32_t right)
{
    return WrapTo32(std::int64_t{left} + right);
}

[[nodiscard]] constexpr std::int32_t SubtractWrapping(std::int32_t left, std::int32_t right)
{
    return WrapTo32(std::int64_t{left} - right);
}

[[nodiscard]] constexpr std::int32_t MultiplyWrapping(std::int32_t left, std::int32_t right)
{
    return WrapTo32(std::int64_t{left} * right);
}

/// Divides, truncating toward zero. `divisor` must not be 0; the least number divided by -1 gives
/// itself.
[[nodiscard]] constexpr std::int32_t DivideWrapping(std::int32_t dividend, std::int32_t divisor)
{
    return WrapTo32(std::int64_t{dividend} / divisor);
}

} // namespace qe

#endif
