#include "Toolkit/Import/Formats/YamlTemplates.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Text/TextEdges.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace qe::tool {

namespace {

constexpr std::array<std::string_view, 8> kBlocks{"for",    "if",  "macro", "call",
                                                  "filter", "raw", "block", "set"};

/// A text with more than these is taken for a program.
constexpr std::size_t kMaximumTemplates = 1000;

/// Properties of a cube without which it is not what it is.
constexpr std::array<std::string_view, 2> kEssential{"name", "extends"};

/// A template as it stands: both lines belong to it.
struct Template
{
    std::size_t first = 0;
    std::size_t last = 0;
    /// '{' for a value, '%' for a statement.
    char kind = '{';
    /// What a statement begins with, such as "if".
    std::string word{};
    bool isBlock = false;
    bool isAlone = false;
};

class TemplateRemover
{
public:
    explicit TemplateRemover(std::string_view text)
    {
        for (std::string_view rest = text;;) {
            const std::size_t end = rest.find('\n');
            mLines.emplace_back(rest.substr(0, end));
            if (end == std::string_view::npos)
                break;
            rest.remove_prefix(end + 1);
        }
    }

    std::optional<TemplateFree> Remove()
    {
        if (!FindTemplates())
            return std::nullopt;
        for (std::size_t i = 0; i < mTemplates.size(); ++i) {
            if (!RemoveOne(i))
                return std::nullopt;
        }
        TemplateFree free;
        for (std::size_t i = 0; i < mLines.size(); ++i) {
            free.text += i == 0 ? "" : "\n";
            free.text += mLines[i];
        }
        free.lines = std::move(mTold);
        return free;
    }

private:
    using Range = std::pair<std::size_t, std::size_t>;

    /// Finds the templates outside of comments; false where one does not end.
    bool FindTemplates()
    {
        for (std::size_t line = 0; line < mLines.size(); ++line) {
            if (Trim(mLines[line]).starts_with('#'))
                continue;
            std::size_t column = 0;
            while (FindOpening(line, column)) {
                if (mTemplates.size() == kMaximumTemplates || !TakeTemplate(line, column))
                    return false;
            }
        }
        return true;
    }

    [[nodiscard]] bool FindOpening(std::size_t line, std::size_t& column) const
    {
        const std::string& text = mLines[line];
        for (; column + 1 < text.size(); ++column) {
            if (text[column] == '{' &&
                (text[column + 1] == '{' || text[column + 1] == '%' || text[column + 1] == '#'))
                return true;
        }
        return false;
    }

    /// Goes on behind the template that opens there.
    bool TakeTemplate(std::size_t& line, std::size_t& column)
    {
        Template found{.first = line, .kind = mLines[line][column + 1]};
        const std::string end{found.kind == '{' ? '}' : found.kind, '}'};
        const std::size_t opening = column;
        std::string inside;
        for (std::size_t start = column + 2;; start = 0, ++line) {
            if (line == mLines.size())
                return false;
            column = mLines[line].find(end, start);
            inside +=
                mLines[line].substr(start, column == std::string::npos ? column : column - start);
            if (column != std::string::npos)
                break;
            inside += ' ';
        }
        column += end.size();
        found.last = line;
        if (found.kind == '#') {
            Erase(found, opening, column);
            return true;
        }
        found.isAlone = Trim(mLines[found.first].substr(0, opening)).empty() &&
                        Trim(mLines[line].substr(column)).empty();
        if (found.kind == '%')
            ReadStatement(found, inside);
        mTemplates.push_back(std::move(found));
        return true;
    }

    static void ReadStatement(Template& found, std::string_view inside)
    {
        inside = Trim(inside.substr(inside.starts_with('-') || inside.starts_with('+') ? 1 : 0));
        const auto end = std::find_if_not(inside.begin(), inside.end(), ascii::IsLetter);
        found.word.assign(inside.begin(), end);
        // "set x = y" is a statement, "set x" the beginning of a block.
        found.isBlock = std::find(kBlocks.begin(), kBlocks.end(), found.word) != kBlocks.end() &&
                        !(found.word == "set" && inside.find('=') != std::string_view::npos);
    }

    void Erase(const Template& comment, std::size_t opening, std::size_t end)
    {
        for (std::size_t line = comment.first; line <= comment.last; ++line) {
            std::string& text = mLines[line];
            const std::size_t from = line == comment.first ? opening : 0;
            const std::size_t to = line == comment.last ? end : text.size();
            std::fill(text.begin() + static_cast<std::ptrdiff_t>(from),
                      text.begin() + static_cast<std::ptrdiff_t>(to), ' ');
        }
    }

    /// Leaves out the template and what depends on it; `position` comes to the last one in it.
    bool RemoveOne(std::size_t& position)
    {
        const Template& first = mTemplates[position];
        if (IsBlank(first.first) && IsBlank(first.last))
            return true;
        mTold.push_back(first.first + 1);
        if (!first.isBlock)
            return RemoveValue(first);
        int open = 0;
        std::size_t last = position;
        for (;; ++last) {
            if (last == mTemplates.size())
                return false;
            open += mTemplates[last].isBlock ? 1 : 0;
            open -= mTemplates[last].word.starts_with("end") ? 1 : 0;
            if (open == 0)
                break;
        }
        position = last;
        return RemoveBlock(first, mTemplates[last]);
    }

    bool RemoveValue(const Template& value)
    {
        const bool isNothing = value.kind == '%' && value.isAlone;
        if (isNothing || (value.isAlone && StandsInList(value.first))) {
            BlankLines({value.first, value.last});
            return true;
        }
        return RemoveAround({value.first, value.last});
    }

    bool RemoveBlock(const Template& first, const Template& last)
    {
        std::size_t inside = first.last + 1;
        while (inside < last.first && IsBlank(inside))
            ++inside;
        const Range range{first.first, last.last};
        const std::string_view text = Trim(mLines[inside]);
        const bool isWhole =
            first.isAlone && last.isAlone &&
            (first.word == "macro" || first.word == "set" || inside >= last.first ||
             text.starts_with("- ") || text.starts_with("{"));
        if (isWhole) {
            BlankLines(range);
            return true;
        }
        return RemoveAround(range);
    }

    /// Returns whether the line stands where entries of a list could.
    [[nodiscard]] bool StandsInList(std::size_t line) const
    {
        const std::size_t indent = IndentOf(line);
        while (line > 0) {
            --line;
            if (IsBlank(line) || IndentOf(line) > indent)
                continue;
            const std::string_view text = Trim(mLines[line]);
            constexpr std::array<std::string_view, 6> kLists{
                "cubes:", "views:", "joins:", "dimensions:", "measures:", "segments:"};
            return text.starts_with("- ")
                       ? IndentOf(line) == indent
                       : std::find(kLists.begin(), kLists.end(), text) != kLists.end();
        }
        return false;
    }

    /// Leaves out the smallest part around the lines.
    bool RemoveAround(Range lines)
    {
        if (IsBlank(lines.first))
            return true;
        std::size_t child = lines.first;
        const auto entry = FindEntry(lines.first, child);
        if (!entry)
            return false;
        std::size_t unused = *entry;
        const bool isInner = FindEntry(*entry == 0 ? 0 : *entry, unused, false).has_value();
        if (!isInner && child != *entry && !IsEssential(child)) {
            BlankLines({child, std::max(lines.second, EndOf(child))});
            return true;
        }
        const Range whole{*entry, std::max(lines.second, EndOf(*entry))};
        const bool isKey = std::any_of(
            mLines.begin() + static_cast<std::ptrdiff_t>(whole.first),
            mLines.begin() + static_cast<std::ptrdiff_t>(whole.second) + 1,
            [](const std::string& line) { return line.find("primary_key") != std::string::npos; });
        const std::string indent(IndentOf(*entry), ' ');
        BlankLines(whole);
        // A part of a key would be taken for all of it.
        if (isInner && isKey)
            mLines[whole.first] = indent +
                                  "- { name: \"template:" + std::to_string(whole.first + 1) +
                                  "\", sql: \"''\", primary_key: true }";
        return true;
    }

    /// Returns the line on which the innermost entry of a list around a line begins; `child` comes
    /// to the line of the entry's property that the line lies in.
    [[nodiscard]] std::optional<std::size_t> FindEntry(std::size_t line, std::size_t& child,
                                                       bool mayBeItself = true) const
    {
        const auto isEntry = [this](std::size_t at) {
            const std::string_view text = Trim(mLines[at]);
            return text == "-" || text.starts_with("- ");
        };
        child = line;
        if (mayBeItself && isEntry(line))
            return line;
        std::size_t indent = IndentOf(line);
        for (std::size_t at = line; at-- > 0 && indent > 0;) {
            if (IsBlank(at) || IndentOf(at) >= indent)
                continue;
            if (isEntry(at))
                return at;
            child = at;
            indent = IndentOf(at);
        }
        return std::nullopt;
    }

    [[nodiscard]] bool IsEssential(std::size_t line) const
    {
        const std::string_view text = Trim(mLines[line]);
        return std::find(kEssential.begin(), kEssential.end(), text.substr(0, text.find(':'))) !=
               kEssential.end();
    }

    /// Returns the last line that is indented further than the one above it all.
    [[nodiscard]] std::size_t EndOf(std::size_t line) const
    {
        std::size_t end = line;
        for (std::size_t at = line + 1; at < mLines.size(); ++at) {
            if (IsBlank(at))
                continue;
            if (IndentOf(at) <= IndentOf(line))
                break;
            end = at;
        }
        return end;
    }

    [[nodiscard]] std::size_t IndentOf(std::size_t line) const
    {
        return std::min(mLines[line].find_first_not_of(' '), mLines[line].size());
    }

    [[nodiscard]] bool IsBlank(std::size_t line) const { return Trim(mLines[line]).empty(); }

    void BlankLines(Range lines)
    {
        for (std::size_t line = lines.first; line <= lines.second; ++line)
            mLines[line].clear();
    }

    std::vector<std::string> mLines;
    std::vector<Template> mTemplates;
    std::vector<std::size_t> mTold;
};

} // namespace

bool HasTemplates(std::string_view text)
{
    return text.find("{{") != std::string_view::npos || text.find("{%") != std::string_view::npos ||
           text.find("{#") != std::string_view::npos;
}

std::optional<TemplateFree> LeaveOutTemplates(std::string_view text)
{
    return TemplateRemover(text).Remove();
}

} // namespace qe::tool
