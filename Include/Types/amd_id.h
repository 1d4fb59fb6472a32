#ifndef INCLUDE_TYPES_AMD_ID_H
#define INCLUDE_TYPES_AMD_ID_H

#include <compare>
#include <cstdint>
#include <string>

/// Names one metadata object. Ids are plain values, ordered by (domain, classCode, number) as
/// signed numbers; they are never hashed.
struct amd_id
{
    /// Copied and compared, never interpreted.
    std::int32_t domain = 0;
    /// The kind of object, one of IdClass.
    std::int32_t classCode = 0;
    /// The object's number within its class.
    std::int32_t number = 0;

    /// Makes the empty id, which stands for "not found".
    constexpr amd_id() = default;
    constexpr amd_id(std::int32_t domainWord, std::int32_t classWord, std::int32_t numberWord)
        : domain(domainWord), classCode(classWord), number(numberWord)
    {}

    /// Returns whether the id can name an object: class and number are set. The domain is not
    /// looked at.
    [[nodiscard]] constexpr bool IsValid() const noexcept { return classCode != 0 && number != 0; }

    friend constexpr auto operator<=>(const amd_id&, const amd_id&) = default;
};

/// Writes an id as logs and dumps show it: "class:number", without the domain.
[[nodiscard]] inline std::string ToText(const amd_id& id)
{
    return std::to_string(id.classCode) + ':' + std::to_string(id.number);
}

#endif
