#include "I18NConverter.h"

#include <gtest/gtest.h>
#include <string>

namespace {

#define FFFD "\xEF\xBF\xBD"

struct Utf8Case
{
    const char* name;
    const char* bytes;
    const char* text;
};

const Utf8Case utf8Cases[] = {
    {"null", nullptr, ""},
    {"all lengths", "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
     "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
    {"bounds of the lengths", "\x7F\xC2\x80\xE0\xA0\x80\xF4\x8F\xBF\xBF",
     "\x7F\xC2\x80\xE0\xA0\x80\xF4\x8F\xBF\xBF"},
    {"around the surrogates", "\xED\x9F\xBF\xEE\x80\x80", "\xED\x9F\xBF\xEE\x80\x80"},
    {"lone trail bytes",
     "\x80"
     "a\xBF",
     FFFD "a" FFFD},
    {"bytes that never occur", "\xC0\xC1\xF5\xFF", FFFD FFFD FFFD FFFD},
    {"overlong slash", "\xC0\xAF\xE0\x80\xAF\xF0\x80\x80\xAF",
     FFFD FFFD FFFD FFFD FFFD FFFD FFFD FFFD FFFD},
    {"surrogate", "\xED\xA0\x80", FFFD FFFD FFFD},
    {"above the last number", "\xF4\x90\x80\x80", FFFD FFFD FFFD FFFD},
    {"cut short, one piece each", "\xE2\x82|\xF0\x9F\x98|\xF0\x9F|\xC3",
     FFFD "|" FFFD "|" FFFD "|" FFFD},
    {"cut short by a lead byte",
     "\xE1\x80\xE2\xF0\x91\x92\xF1\xBF"
     "A",
     FFFD FFFD FFFD FFFD "A"},
};

TEST(Utf8Test, ReplacesEachMaximalIllFormedPiece)
{
    for (const Utf8Case& test : utf8Cases)
        EXPECT_EQ(AUT_GetUTF8Converter().Convert(test.bytes).ToStdString(), test.text) << test.name;
}

} // namespace
