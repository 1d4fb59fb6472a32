#ifndef ENGINE_EXPRESSION_TAG_H
#define ENGINE_EXPRESSION_TAG_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qe::expression {

enum class ETagShape : std::uint8_t
{
    /// No tag begins there.
    None,
    /// `<name>`, which may be two comparisons as well.
    Bare,
    /// `<name attribute="value">` or `<name/>`, with or without attributes: nothing else is
    /// written like that.
    Distinct,
    /// `</name>`: nothing else is written like that.
    Closing,
};

/// A piece of text that has the shape of a markup tag.
struct Tag
{
    ETagShape shape = ETagShape::None;
    std::string_view name;
    /// The offset behind the tag.
    std::size_t end = 0;
};

/// Returns the tag that the text from `offset` on has. Names consist of ASCII letters, digits and
/// "_-:.", and begin with a letter or "_" right behind the "<" or "</"; attribute values stand
/// between quotes and hold no "<". Looks no farther than to the next "<".
[[nodiscard]] Tag ReadTag(std::string_view text, std::size_t offset);

} // namespace qe::expression

#endif
