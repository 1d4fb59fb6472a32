#include "Toolkit/Text/PlainJson.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace qe::tool {
namespace {

using nlohmann::json;

/// Every kind of token, and every way in which one follows another.
constexpr std::string_view kSample =
    R"( {"a": [], "b":{ },"text" : "plain", "list":[1,[2 , {"c":null}],true, false],
"wide":"\u00e4\"\\", "gr\u00fcn": -12, "zero":0,"part":0.5, "power":[1e3,-2E-2,123456789012345678901]}
)";

/// Expects that a text is read as the general parser reads it, or not at all.
void ExpectSameOrNothing(const std::string& text)
{
    const auto plain = ReadPlainJson(text, "m");
    if (!plain)
        return;
    const json general = json::parse(text, nullptr, false);
    ASSERT_FALSE(general.is_discarded()) << text;
    EXPECT_EQ(plain->dump(), general.dump()) << text;
}

TEST(PlainJson, IsReadAsByTheGeneralParser)
{
    for (const char* const text :
         {"{}", "[]", " [ ] ", "0", "-0", "17", "-3", "1.25", "1E2", "18446744073709551615",
          "123456789012345678901234567890", "true", "null", R"("")", R"("a b")", R"("\u20ac\n\/")",
          "\"\xE2\x82\xAC\xF0\x9F\x98\x80\x7F\"", "[[[1],2],{\"\":{}}]"}) {
        const auto plain = ReadPlainJson(text, "m");
        ASSERT_TRUE(plain) << text;
        EXPECT_EQ(plain->dump(), json::parse(text).dump()) << text;
        EXPECT_EQ(plain->type(), json::parse(text).type()) << text;
    }
    const auto sample = ReadPlainJson(kSample, "m");
    ASSERT_TRUE(sample);
    EXPECT_EQ(*sample, json::parse(kSample));
}

TEST(PlainJson, LeavesMistakesToTheGeneralParser)
{
    using namespace std::string_view_literals;
    for (const std::string_view text : {""sv,
                                        " "sv,
                                        "[1,]"sv,
                                        "{\"a\":1,}"sv,
                                        "[1 2]"sv,
                                        "{} {}"sv,
                                        "[}"sv,
                                        "{]"sv,
                                        "{\"a\"}"sv,
                                        "{1:2}"sv,
                                        "01"sv,
                                        "+1"sv,
                                        "1."sv,
                                        "--1"sv,
                                        "1e999"sv,
                                        "tru"sv,
                                        "nulls"sv,
                                        "\"a"sv,
                                        "\"a\\"sv,
                                        "\"\\x\""sv,
                                        "\"\\ud800\""sv,
                                        "\"\t\""sv,
                                        "\"\xFF\""sv,
                                        "\"\xC0\xAF\""sv,
                                        "\"\xED\xA0\x80\""sv,
                                        "1\0"sv,
                                        "\0"sv,
                                        "\xEF\xBB\xBF{}"sv,
                                        "[1]//"sv,
                                        "[\v1]"sv,
                                        R"({"a":1,"b":{},"a":2})"sv})
        EXPECT_FALSE(ReadPlainJson(text, "m")) << text;
}

TEST(PlainJson, NoMutationIsReadInAnotherWay)
{
    using namespace std::string_view_literals;
    for (std::size_t at = 0; at < kSample.size(); ++at) {
        const std::string front(kSample.substr(0, at));
        ExpectSameOrNothing(front);
        ExpectSameOrNothing(front + std::string(kSample.substr(at + 1)));
        for (const char other : "{}[]\",:\\0-.e tn\n\x01\x80\xC3"sv)
            ExpectSameOrNothing(front + other + std::string(kSample.substr(at + 1)));
    }
}

} // namespace
} // namespace qe::tool
