#include "Toolkit/Text/YamlText.h"

#include "Toolkit/Text/DocumentBuilder.h"

#include <nlohmann/json.hpp>
#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/mark.h>
#include <yaml-cpp/parser.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using nlohmann::json;

/// What anchors name and aliases copy may come to this many values in one document.
constexpr std::size_t kMaximumCopies = 1'000'000;
constexpr const char* kMergeKey = "<<";

/// How large a value is that aliases copy.
struct Extent
{
    std::size_t values = 1;
    std::size_t depth = 0;
};

Extent Measure(const json& value)
{
    Extent whole;
    if (!value.is_structured())
        return whole;
    for (const json& part : value) {
        const Extent extent = Measure(part);
        whole.values += extent.values;
        whole.depth = std::max(whole.depth, extent.depth);
    }
    ++whole.depth;
    return whole;
}

template <std::size_t count>
bool IsOneOf(std::string_view text, const std::array<std::string_view, count>& words)
{
    return std::find(words.begin(), words.end(), text) != words.end();
}

std::optional<json> ReadYamlNumber(std::string_view text)
{
    const std::string_view digits = text.substr(text[0] == '+' ? 1 : 0);
    const char* const end = digits.data() + digits.size();
    std::int64_t whole = 0;
    if (const auto read = std::from_chars(digits.data(), end, whole);
        read.ec == std::errc() && read.ptr == end)
        return whole;
    double number = 0;
    const bool isPlain = digits.find_first_not_of("0123456789+-.eE") == std::string_view::npos;
    if (const auto read = std::from_chars(digits.data(), end, number);
        isPlain && read.ec == std::errc() && read.ptr == end)
        return number;
    return std::nullopt;
}

/// Returns what a scalar without quotes stands for.
json ReadPlainScalar(const std::string& text)
{
    constexpr std::array<std::string_view, 5> kNull{"", "~", "null", "Null", "NULL"};
    constexpr std::array<std::string_view, 3> kTrue{"true", "True", "TRUE"};
    constexpr std::array<std::string_view, 3> kFalse{"false", "False", "FALSE"};
    if (IsOneOf(text, kNull))
        return nullptr;
    if (IsOneOf(text, kTrue) || IsOneOf(text, kFalse))
        return IsOneOf(text, kTrue);
    const std::optional<json> number = ReadYamlNumber(text);
    return number ? *number : json(text);
}

/// Hands what the parser reads to a builder.
class YamlReader final : public YAML::EventHandler
{
public:
    /// `lines` may be null.
    YamlReader(JsonProblems& problems, LineRecord* lines)
        : mProblems(&problems), mLines(lines), mBuilder(problems)
    {
        if (lines != nullptr)
            mBuilder.Report(*lines);
    }

    [[nodiscard]] json TakeDocument() { return mBuilder.TakeDocument(); }

    void OnDocumentStart(const YAML::Mark& /*mark*/) override {}
    void OnDocumentEnd() override {}
    void OnNull(const YAML::Mark& mark, YAML::anchor_t anchor) override
    {
        Scalar(mark, anchor, nullptr, "");
    }
    void OnScalar(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                  const std::string& value) override
    {
        // The parser tags what stands without quotes with "?".
        Scalar(mark, anchor, tag == "?" ? ReadPlainScalar(value) : json(value), value);
    }
    void OnSequenceStart(const YAML::Mark& mark, const std::string& /*tag*/, YAML::anchor_t anchor,
                         YAML::EmitterStyle::value /*style*/) override
    {
        Enter(mark, anchor, json::array());
    }
    void OnMapStart(const YAML::Mark& mark, const std::string& /*tag*/, YAML::anchor_t anchor,
                    YAML::EmitterStyle::value /*style*/) override
    {
        Enter(mark, anchor, json::object());
    }
    void OnSequenceEnd() override { Leave(); }
    void OnMapEnd() override { Leave(); }
    void OnAlias(const YAML::Mark& mark, YAML::anchor_t anchor) override;

private:
    struct Anchored
    {
        json value{};
        Extent extent{};
    };
    struct Level
    {
        YAML::anchor_t anchor = 0;
        bool isMap = false;
        /// Whether a map's next scalar is a value, not a key.
        bool hasKey = false;
    };

    void Scalar(const YAML::Mark& mark, YAML::anchor_t anchor, const json& value,
                const std::string& text);
    void Enter(const YAML::Mark& mark, YAML::anchor_t anchor, json value);
    void Leave();
    void Remember(YAML::anchor_t anchor, const json& value);
    /// Throws an InputError when copies get too many.
    void Count(const Extent& extent);
    [[nodiscard]] std::string NextPlace() const
    {
        return mProblems->ToPlace(mBuilder.GetNextPointer(), mLine);
    }
    void MergeKeys(json& object);
    /// Notes that a value follows, which is no key. Throws where one should stand.
    void BeginValue(const YAML::Mark& mark);
    [[noreturn]] void Fail(const YAML::Mark& mark, const std::string& text) const;

    JsonProblems* mProblems;
    LineRecord* mLines;
    DocumentBuilder mBuilder;
    std::vector<Level> mLevels;
    std::map<YAML::anchor_t, Anchored> mAnchors;
    std::size_t mCopies = 0;
    /// The line of what was read last.
    std::size_t mLine = 1;
};

std::string PlaceOf(const JsonProblems& problems, const YAML::Mark& mark)
{
    return problems.GetDocumentName() + ':' + std::to_string(mark.line + 1) + ':' +
           std::to_string(mark.column + 1);
}

void YamlReader::Fail(const YAML::Mark& mark, const std::string& text) const
{
    throw InputError({{PlaceOf(*mProblems, mark), text}});
}

void YamlReader::BeginValue(const YAML::Mark& mark)
{
    mLine = static_cast<std::size_t>(mark.line) + 1;
    if (mLines != nullptr)
        mLines->SetLine(mLine);
    if (mLevels.empty() || !mLevels.back().isMap)
        return;
    if (!mLevels.back().hasKey)
        Fail(mark, "a key must be a text");
    mLevels.back().hasKey = false;
}

void YamlReader::Scalar(const YAML::Mark& mark, YAML::anchor_t anchor, const json& value,
                        const std::string& text)
{
    if (!mLevels.empty() && mLevels.back().isMap && !mLevels.back().hasKey) {
        mLevels.back().hasKey = true;
        mBuilder.AddKey(text);
    } else {
        BeginValue(mark);
        Remember(anchor, mBuilder.AddValue(value));
        return;
    }
    Remember(anchor, value);
}

void YamlReader::Enter(const YAML::Mark& mark, YAML::anchor_t anchor, json value)
{
    BeginValue(mark);
    if (mBuilder.GetDepth() == kMaximumDocumentDepth)
        throw DepthError(NextPlace());
    mLevels.push_back({.anchor = anchor, .isMap = value.is_object()});
    mBuilder.Enter(std::move(value));
}

void YamlReader::Leave()
{
    json& closed = mBuilder.GetOpen();
    // Inside, the builder would name the key that was read last, which merging may take away.
    mBuilder.Leave();
    if (closed.is_object())
        MergeKeys(closed);
    Remember(mLevels.back().anchor, closed);
    mLevels.pop_back();
}

void YamlReader::Remember(YAML::anchor_t anchor, const json& value)
{
    if (anchor == 0)
        return;
    const Extent extent = Measure(value);
    Count(extent);
    mAnchors.insert_or_assign(anchor, Anchored{.value = value, .extent = extent});
}

void YamlReader::Count(const Extent& extent)
{
    mCopies += extent.values;
    if (mCopies > kMaximumCopies)
        throw InputError({{NextPlace(), "anchors and aliases come to more than " +
                                            std::to_string(kMaximumCopies) + " values"}});
}

void YamlReader::OnAlias(const YAML::Mark& mark, YAML::anchor_t anchor)
{
    const auto found = mAnchors.find(anchor);
    if (found == mAnchors.end())
        Fail(mark, "an alias stands within what it names");
    BeginValue(mark);
    const Extent& extent = found->second.extent;
    Count(extent);
    if (mBuilder.GetDepth() + extent.depth > kMaximumDocumentDepth)
        throw DepthError(NextPlace());
    mBuilder.AddValue(found->second.value);
}

void YamlReader::MergeKeys(json& object)
{
    const auto merge = object.find(kMergeKey);
    if (merge == object.end())
        return;
    const json merged = std::move(*merge);
    object.erase(merge);
    for (const json& source : merged.is_array() ? merged : json::array({merged})) {
        if (source.is_object())
            object.insert(source.begin(), source.end());
        else
            mProblems->Add(ChildPointer(mBuilder.GetPointer(), kMergeKey),
                           "\"<<\" must name objects");
    }
}

/// Throws an InputError where the text is no YAML.
void Read(const std::string& text, YamlReader& reader, const JsonProblems& problems)
{
    try {
        std::istringstream stream(text);
        stream.exceptions(std::ios::badbit);
        YAML::Parser parser(stream);
        parser.HandleNextDocument(reader);
        JsonProblems ignored;
        YamlReader rest(ignored, nullptr);
        if (parser.HandleNextDocument(rest))
            throw InputError(
                {{problems.GetDocumentName(), "holds more than one document; one can be read"}});
    } catch (const YAML::ParserException& error) {
        throw InputError({{PlaceOf(problems, error.mark), "not valid YAML: " + error.msg}});
    }
}

} // namespace

json ParseYaml(const std::string& text, JsonProblems& problems)
{
    YamlReader reader(problems, nullptr);
    Read(text, reader, problems);
    return reader.TakeDocument();
}

DocumentLines FindYamlLines(const std::string& text, const std::set<std::string>& pointers)
{
    LineRecord lines(pointers);
    JsonProblems ignored;
    YamlReader reader(ignored, &lines);
    Read(text, reader, ignored);
    return lines.Get();
}

} // namespace qe::tool
