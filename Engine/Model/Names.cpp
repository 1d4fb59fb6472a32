#include "Engine/Model/Names.h"

#include "Engine/Services/Characters.h"

#include <algorithm>
#include <utility>

namespace qe::model {
namespace {

/// Returns whether the two bytes are a capital letter between U+00C0 and U+00DE; the
/// multiplication sign among them is none.
bool IsLatin1Capital(unsigned char first, unsigned char second)
{
    return first == 0xC3 && second >= 0x80 && second <= 0x9E && second != 0x97;
}

} // namespace

std::string FoldCase(std::string_view text)
{
    std::string folded(text);
    unsigned char previous = 0;
    for (char& letter : folded) {
        const auto byte = static_cast<unsigned char>(letter);
        if (ascii::IsUpper(letter) || IsLatin1Capital(previous, byte))
            letter = static_cast<char>(byte + 0x20);
        previous = byte;
    }
    return folded;
}

std::size_t EditDistance(std::string_view left, std::string_view right, std::size_t limit)
{
    if (left.size() > right.size())
        std::swap(left, right);
    const std::size_t beyond = limit + 1;
    if (right.size() - left.size() > limit)
        return beyond;

    std::vector<std::size_t> beforeLast(left.size() + 1, beyond);
    std::vector<std::size_t> last(left.size() + 1);
    std::vector<std::size_t> current(left.size() + 1);
    for (std::size_t i = 0; i <= left.size(); ++i)
        last[i] = i;
    for (std::size_t j = 1; j <= right.size(); ++j) {
        // Cells further than `limit` from the diagonal cannot be part of a short path.
        const std::size_t from = j > limit ? j - limit : 0;
        const std::size_t to = std::min(left.size(), j + limit);
        std::fill(current.begin(), current.end(), beyond);
        if (from == 0)
            current[0] = j;
        std::size_t least = current[0];
        for (std::size_t i = std::max<std::size_t>(from, 1); i <= to; ++i) {
            const bool same = left[i - 1] == right[j - 1];
            std::size_t cost = last[i - 1] + (same ? 0 : 1);
            cost = std::min({cost, last[i] + 1, current[i - 1] + 1});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1])
                cost = std::min(cost, beforeLast[i - 2] + 1);
            current[i] = cost;
            least = std::min(least, cost);
        }
        // A swap reaches two rows back, but costs more than is left there too.
        if (least > limit)
            return beyond;
        beforeLast.swap(last);
        last.swap(current);
    }
    return last[left.size()];
}

std::vector<std::string> NearestNames(std::string_view wrong,
                                      const std::vector<std::string_view>& candidates,
                                      std::size_t count)
{
    // A longer name is no slip of a hand, and to compare it takes the square of its length.
    constexpr std::size_t kLongestCompared = 1000;
    if (wrong.size() > kLongestCompared)
        return {};
    const std::string folded = FoldCase(wrong);
    const std::size_t limit = std::max<std::size_t>(1, folded.size() / 3);
    std::vector<std::pair<std::size_t, std::string_view>> near;
    for (const std::string_view candidate : candidates) {
        const std::size_t longer = std::max(candidate.size(), folded.size());
        if (longer - std::min(candidate.size(), folded.size()) > limit)
            continue;
        const std::size_t distance = EditDistance(folded, FoldCase(candidate), limit);
        if (distance <= limit)
            near.emplace_back(distance, candidate);
    }
    std::sort(near.begin(), near.end());
    near.erase(std::unique(near.begin(), near.end()), near.end());

    std::vector<std::string> names;
    for (std::size_t i = 0; i < near.size() && i < count; ++i)
        names.emplace_back(near[i].second);
    return names;
}

namespace {

/// Reads the bracketed part that starts at `position` and moves behind it.
std::string ReadBracketed(std::string_view text, std::size_t& position)
{
    std::string part;
    for (++position; position < text.size(); ++position) {
        if (text[position] == ']') {
            ++position;
            if (position == text.size() || text[position] != ']')
                break;
        }
        part += text[position];
    }
    return part;
}

void AppendBracketed(std::string& text, std::string_view part)
{
    text += '[';
    for (const char letter : part)
        text.append(letter == ']' ? 2 : 1, letter);
    text += ']';
}

} // namespace

QualifiedName ParseQualifiedName(std::string_view text)
{
    QualifiedName parts(1);
    std::size_t position = 0;
    while (position < text.size()) {
        if (text[position] == '.') {
            parts.emplace_back();
            ++position;
        } else if (text[position] == '[' && parts.back().empty()) {
            parts.back() = ReadBracketed(text, position);
        } else {
            const std::size_t end = std::min(text.find_first_of(".[", position + 1), text.size());
            parts.back() += text.substr(position, end - position);
            position = end;
        }
    }
    return parts;
}

std::string ToText(const QualifiedName& name)
{
    std::string text;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (i > 0)
            text += '.';
        if (name[i].find_first_of(".[]") == std::string::npos)
            text += name[i];
        else
            AppendBracketed(text, name[i]);
    }
    return text;
}

std::string ToReferenceText(const QualifiedName& name)
{
    std::string text;
    for (const std::string& part : name) {
        if (!text.empty())
            text += '.';
        AppendBracketed(text, part);
    }
    return text;
}

} // namespace qe::model
