#include "Toolkit/Import/Formats/TmdlText.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Formats/TmdlWords.h"
#include "Toolkit/Text/DocumentBuilder.h"
#include "Toolkit/Text/TextEdges.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace qe::tool {

namespace {

using nlohmann::json;

constexpr std::string_view kFence = "```";
constexpr std::string_view kDescription = "///";
/// How far a tab indents.
constexpr std::size_t kTab = 4;
/// Holds objects of which nobody knows what they are. No object or property is called so.
constexpr const char* kUnknownObjects = "unknown objects";

/// Returns the name that the text begins with, taken off it; nothing when there is none, or its
/// quote does not end. A name without quotes ends before a blank, an "=" or one of `ends`.
std::optional<std::string> TakeName(std::string_view& text, std::string_view ends)
{
    std::string name;
    if (!text.starts_with('\'')) {
        while (!text.empty() && !ascii::IsSpace(text.front()) && text.front() != '=' &&
               ends.find(text.front()) == std::string_view::npos) {
            name += text.front();
            text.remove_prefix(1);
        }
        return name.empty() ? std::nullopt : std::optional(name);
    }
    for (text.remove_prefix(1); !text.empty(); text.remove_prefix(1)) {
        if (text.front() == '\'') {
            text.remove_prefix(1);
            if (!text.starts_with('\''))
                return name;
        }
        name += text.front();
    }
    return std::nullopt;
}

/// Returns the text without the quotes that keep blanks at its edges.
std::string Unquote(std::string_view value)
{
    std::string text;
    const std::string_view inner = value.size() < 2 ? value : value.substr(1, value.size() - 2);
    for (std::size_t i = 0; i < inner.size(); ++i) {
        text += inner[i];
        if (inner[i] == '"' && (++i == inner.size() || inner[i] != '"'))
            return std::string(value);
    }
    const bool isQuoted = value.size() >= 2 && value.front() == '"' && value.back() == '"';
    return isQuoted ? text : std::string(value);
}

std::string ToListName(std::string_view kind)
{
    if (kind.ends_with('y'))
        return std::string(kind.substr(0, kind.size() - 1)) + "ies";
    return std::string(kind) + 's';
}

struct Line
{
    std::size_t indent = 0;
    /// That of the next line that is not empty; 0 at the end.
    std::size_t indentBelow = 0;
    /// Without the blanks at both ends.
    std::string_view text{};
};

std::vector<Line> SplitLines(std::string_view text)
{
    std::vector<Line> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view whole = text.substr(0, end);
        Line line{.text = Trim(whole)};
        for (std::size_t i = 0; i < whole.size() && (whole[i] == ' ' || whole[i] == '\t'); ++i)
            line.indent += whole[i] == '\t' ? kTab : 1;
        lines.push_back(line);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

class TmdlReader
{
public:
    /// `record` may be null.
    TmdlReader(std::string_view text, const JsonProblems& problems, LineRecord* record)
        : mProblems(problems), mRecord(record), mLines(SplitLines(SkipByteOrderMark(text)))
    {
        std::size_t below = 0;
        for (auto line = mLines.rbegin(); line != mLines.rend(); ++line) {
            line->indentBelow = below;
            if (line->text.empty())
                continue;
            below = line->indent;
            if (line->indent > 0)
                mUnit = std::min(mUnit, line->indent);
        }
    }

    json Read()
    {
        mLevels.push_back({.object = &mTop});
        for (; mLine < mLines.size(); ++mLine) {
            const Line& line = mLines[mLine];
            if (line.text.starts_with(kDescription)) {
                mDescription += (mDescription.empty() ? "" : "\n");
                mDescription += Trim(line.text.substr(kDescription.size()));
            } else if (!line.text.empty()) {
                while (mLevels.size() > 1 && mLevels.back().indent >= line.indent)
                    mLevels.pop_back();
                if (mRecord != nullptr)
                    mRecord->SetLine(mLine + 1);
                ReadLine(line);
                mDescription.clear();
            }
        }
        return std::move(mTop);
    }

    /// Returns the words of objects that nobody knows, with their places.
    [[nodiscard]] std::vector<std::string> TakeUnknown() { return std::move(mUnknown); }

private:
    struct Level
    {
        std::size_t indent = 0;
        json* object = nullptr;
        std::string pointer{};
        bool isContainer = false;
        /// Whether it lies in an object of which nobody knows what it may hold.
        bool isUnknown = false;
    };

    void ReadLine(const Line& line)
    {
        std::string_view rest = line.text;
        while (!rest.empty() && (ascii::IsLetter(rest.front()) || ascii::IsDigit(rest.front()) ||
                                 rest.front() == '_'))
            rest.remove_prefix(1);
        const std::string word(line.text.substr(0, line.text.size() - rest.size()));
        const std::string_view value = Trim(rest);
        if (word.empty() || !(value.empty() || ascii::IsSpace(rest.front()) ||
                              rest.front() == ':' || rest.front() == '='))
            Fail("is neither an object nor a property");
        if (value.starts_with(':'))
            AddProperty(SpellTmdlProperty(word), Trim(value.substr(1)));
        else if (value.starts_with('='))
            AddExpression(SpellTmdlProperty(word), ReadExpression(value.substr(1), line.indent));
        else if (word == "ref")
            Enter(mUnused, "", line.indent, word);
        else if (!value.empty())
            AddNamed(word, value, line.indent);
        else
            AddNameless(word, line);
    }

    /// Adds an object without a name, or what is true because it is there.
    void AddNameless(const std::string& word, const Line& line)
    {
        if (line.indentBelow <= line.indent) {
            Set(SpellTmdlProperty(word), true);
            return;
        }
        const std::string_view known = RecogniseTmdlWord(word).known;
        const std::string kind = known.empty() ? SpellTmdlProperty(word) : std::string(known);
        Enter((*mLevels.back().object)[kind], ChildPointer(mLevels.back().pointer, kind),
              line.indent, kind);
    }

    void AddProperty(const std::string& key, std::string_view value)
    {
        if (mLevels.back().object->contains(key))
            Fail("an object has the property \"" + key + "\" twice");
        const std::string word = ascii::ToLower(std::string(value));
        if (IsTmdlBoolean(key) && (word == "true" || word == "false"))
            Set(key, word == "true");
        else
            Set(key, Unquote(value));
    }

    /// Some of them may be there several times.
    void AddExpression(const std::string& key, std::string text)
    {
        if (!mLevels.back().object->contains(key))
            Set(key, std::move(text));
    }

    void Set(const std::string& key, json value)
    {
        (*mLevels.back().object)[key] = std::move(value);
        Record(ChildPointer(mLevels.back().pointer, key));
    }

    /// Returns how the format spells the word of an object; what holds those that nobody knows.
    std::string Recognise(const std::string& word)
    {
        const TmdlWord found = RecogniseTmdlWord(word);
        if (!found.known.empty())
            return std::string(found.known);
        if (mLevels.back().isUnknown)
            return kUnknownObjects;
        const std::string meant(found.meant);
        if (found.isNeeded)
            Fail("is no word for an object of TMDL: \"" + word + '"', {meant});
        mUnknown.push_back(word + " (" + PlaceOfLine() +
                           (meant.empty() ? ")" : ", did you mean " + meant + "?)"));
        return kUnknownObjects;
    }

    void AddNamed(const std::string& word, std::string_view rest, std::size_t indent)
    {
        const std::optional<std::string> name = TakeName(rest, "");
        rest = Trim(rest);
        if (!name)
            Fail("a name is missing, or its quote does not end");
        if (!rest.empty() && !rest.starts_with('='))
            Fail("a name with blanks must stand between single quotes");
        // What a script, a database or a model holds is the model's.
        while (mLevels.back().isContainer)
            mLevels.pop_back();
        const std::string kind = Recognise(word);
        const bool isContainer = IsTmdlContainer(kind);
        const std::string key = isContainer || kind == kUnknownObjects ? kind : ToListName(kind);
        json* object = &(*mLevels.back().object)[key];
        std::string pointer = ChildPointer(mLevels.back().pointer, key);
        if (!isContainer) {
            if (!object->is_array())
                *object = json::array();
            pointer = ChildPointer(pointer, object->size());
            object = &object->emplace_back();
        }
        Enter(*object, std::move(pointer), indent, kind);
        Set("name", *name);
        if (!mDescription.empty())
            Set("description", mDescription);
        if (!rest.empty())
            Set("expression", ReadExpression(rest.substr(1), indent + mUnit));
    }

    void Enter(json& object, std::string pointer, std::size_t indent, const std::string& kind)
    {
        if (!object.is_object())
            object = json::object();
        if (mLevels.size() > kMaximumDocumentDepth)
            Fail("is nested too deep");
        Record(pointer);
        mLevels.push_back({.indent = indent,
                           .object = &object,
                           .pointer = std::move(pointer),
                           .isContainer = IsTmdlContainer(kind),
                           .isUnknown = mLevels.back().isUnknown || kind == kUnknownObjects});
    }

    /// Reads what stands behind "=": to the end of the line and on over lines that are indented
    /// further than `indent`, or to the end of what stands between three backquotes.
    std::string ReadExpression(std::string_view start, std::size_t indent)
    {
        start = Trim(start);
        if (start.starts_with(kFence))
            return ReadFenced(start.substr(kFence.size()));
        std::string text(start);
        while (mLines[mLine].indentBelow > indent) {
            ++mLine;
            text += (text.empty() ? "" : "\n");
            text += mLines[mLine].text;
        }
        return text;
    }

    std::string ReadFenced(std::string_view start)
    {
        const std::size_t opened = mLine;
        std::string text(start);
        while (!text.ends_with(kFence)) {
            if (++mLine == mLines.size()) {
                mLine = opened;
                Fail("an expression between three backquotes does not end");
            }
            text += '\n';
            text += mLines[mLine].text;
        }
        text.resize(text.size() - kFence.size());
        return text;
    }

    void Record(const std::string& pointer)
    {
        if (mRecord != nullptr)
            mRecord->Add(pointer);
    }

    [[nodiscard]] std::string PlaceOfLine() const
    {
        return mProblems.GetDocumentName() + ':' + std::to_string(mLine + 1);
    }

    [[noreturn]] void Fail(const std::string& text, std::vector<std::string> nearest = {}) const
    {
        throw InputError({{PlaceOfLine(), text, std::move(nearest)}});
    }

    const JsonProblems& mProblems;
    LineRecord* mRecord;
    std::vector<Line> mLines;
    /// How far one level is indented.
    std::size_t mUnit = kTab;
    std::size_t mLine = 0;
    std::string mDescription;
    json mTop = json::object();
    /// What only puts objects in order, or repeats them.
    json mUnused;
    std::vector<std::string> mUnknown;
    /// The objects around the current line, the outermost first.
    std::vector<Level> mLevels;
};

} // namespace

json ParseTmdl(std::string_view text, const JsonProblems& problems,
               std::vector<std::string>& unknown)
{
    TmdlReader reader(text, problems, nullptr);
    json read = reader.Read();
    unknown = reader.TakeUnknown();
    return read;
}

DocumentLines FindTmdlLines(std::string_view text, const std::set<std::string>& pointers)
{
    LineRecord lines(pointers);
    TmdlReader(text, JsonProblems(), &lines).Read();
    return lines.Get();
}

std::optional<std::vector<std::string>> ReadTmdlPath(std::string_view text)
{
    std::vector<std::string> names;
    for (;;) {
        std::optional<std::string> name = TakeName(text, ".");
        if (!name)
            return std::nullopt;
        names.push_back(std::move(*name));
        if (text.empty())
            return names;
        if (text.front() != '.')
            return std::nullopt;
        text.remove_prefix(1);
    }
}

} // namespace qe::tool
