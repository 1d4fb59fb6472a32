#include "AQE_Expression.h"

#include "HBNException.h"
#include "Tests/Engine/Expression/ExpressionInvariants.h"

#include <gtest/gtest.h>

#include <random>

namespace {

/// Writes random expressions, with more parentheses and stranger spaces than anyone would.
class ExpressionWriter
{
public:
    explicit ExpressionWriter(unsigned seed) : mRandom(seed) {}

    int Pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(mRandom); }

    const char* PickText(std::initializer_list<const char*> texts)
    {
        return *(texts.begin() + Pick(static_cast<int>(texts.size())));
    }

    std::string Write(int depth)
    {
        if (depth == 0 || Pick(8) == 0)
            return PickText({"[a].[b].[c]", "[x]]y].[ö]", "\"a]\"\"\" . [b]", "12", ".5e3",
                             "'it''s <b>'", "''", "nUll", "today", "now()"});
        switch (Pick(13)) {
        case 0:
            return "not " + Group(depth);
        case 1:
            return "-" + Group(depth);
        case 2:
            return PickText({"f", "lib.g_1"}) + List(depth);
        case 3:
            return Group(depth) + Negation() + " in" + List(depth);
        case 4:
            return Group(depth) + Negation() + " like " + Group(depth) +
                   (Pick(2) == 0 ? " escape " + Group(depth) : "");
        case 5:
            return Group(depth) + Negation() + " between " + Group(depth) + " and " + Group(depth);
        case 6:
            return Group(depth) + " is" + Negation() + " null";
        case 7:
            return Case(depth);
        case 8:
            return "cast (" + Group(depth) +
                   PickText({" as t)", " AS a ( 1,max ) b)", " as double precision)"});
        default:
            return Chain(depth);
        }
    }

private:
    std::string Group(int depth)
    {
        const std::string inner = Write(depth - 1);
        const char* const comment =
            Pick(8) == 0 ? PickText({"/* it's ) */", "--\"[*\n", "/**/"}) : "";
        return Pick(4) == 0   ? ' ' + inner + ' '
               : Pick(4) == 0 ? "( (" + inner + ")" + comment + ")"
                              : '(' + (comment + inner) + ')';
    }

    std::string Case(int depth)
    {
        std::string text = "case" + (Pick(2) == 0 ? Group(depth) : "");
        for (int more = 1 + Pick(2); more > 0; --more)
            text += " when " + Group(depth) + "THEN " + Group(depth);
        return text + (Pick(2) == 0 ? " else" + Group(depth) : "") + " end";
    }

    std::string Chain(int depth)
    {
        std::string text = Group(depth);
        for (int more = 1 + Pick(3); more > 0; --more) {
            text += PickText({" or ", "\tAND\n", "+", "-", "*", " / ", "||", " + ", " AND ", "=",
                              "<", "<>", "!=", ">="});
            text += Group(depth);
        }
        return text;
    }

    std::string List(int depth)
    {
        std::string text = "(" + Group(depth);
        for (int more = Pick(3); more > 0; --more)
            text += " ," + Group(depth);
        return text + ")";
    }

    std::string Negation() { return PickText({"", " not"}); }

    std::mt19937 mRandom;
};

/// Returns the text without the parenthesis at `open` and its partner, or nothing when the two are
/// part of a call or list.
std::string WithoutParentheses(const std::string& text, std::size_t open)
{
    const bool isList =
        open > 0 && (std::isalnum(static_cast<unsigned char>(text[open - 1])) != 0 ||
                     (open > 2 && text.compare(open - 3, 3, "IN ") == 0));
    if (isList)
        return {};
    std::size_t close = open;
    for (int depth = 0; close < text.size(); ++close) {
        depth += text[close] == '(' ? 1 : text[close] == ')' ? -1 : 0;
        if (depth == 0)
            break;
    }
    std::string shorter = text;
    shorter[close] = ' ';
    shorter[open] = ' ';
    return shorter;
}

std::string DescribeOrFail(const std::string& text)
{
    try {
        return DescribeTree(*ParseText(text));
    } catch (const HBNException&) {
        return "no expression";
    }
}

TEST(ExpressionProperty, PrintedTextIsTheSameTreeAndNeedsEachOfItsParentheses)
{
    ExpressionWriter writer(20240601);
    int parsed = 0;
    int pairs = 0;
    for (int i = 0; i < 4000; ++i) {
        const std::string text = writer.Write(1 + writer.Pick(4));
        ASSERT_EQ(FindBrokenInvariant(text), "") << text;
        const std::string tree = DescribeOrFail(text);
        if (tree == "no expression")
            continue;
        ++parsed;
        const std::string printed = PrintTree(*ParseText(text));
        for (std::size_t open = printed.find('('); open != std::string::npos;
             open = printed.find('(', open + 1)) {
            const std::string shorter = WithoutParentheses(printed, open);
            pairs += shorter.empty() ? 0 : 1;
            ASSERT_TRUE(shorter.empty() || DescribeOrFail(shorter) != tree)
                << printed << " does not need the parenthesis at " << open;
        }
    }
    EXPECT_GT(parsed, 1500);
    EXPECT_GT(pairs, 1500);
}

TEST(ExpressionProperty, NoBytesBreakTheParser)
{
    const std::string pieces[] = {"<refobj>", "</refobj>", "<a b='c'>", "<d/>",  "&lt;",  "&gt;",
                                  "[",        "]",         "'",         "(",     ")",     "<",
                                  ">",        "=",         " and ",     " not ", ",",     ".",
                                  "[a].[b]",  "in",        "\xC3",      "\n",    "1e",    "- ",
                                  "\"",       "--",        "/*",        "*/",    "case ", "as"};
    ExpressionWriter writer(7);
    for (int i = 0; i < 10000; ++i) {
        std::string text;
        if (i % 4 == 0)
            for (int length = writer.Pick(40); length > 0; --length)
                text += static_cast<char>(writer.Pick(256));
        else if (i % 4 == 1)
            for (int length = writer.Pick(12); length > 0; --length)
                text += pieces[writer.Pick(static_cast<int>(std::size(pieces)))];
        else
            text = writer.Write(3);
        for (int change = writer.Pick(4); change > 0 && !text.empty(); --change) {
            const auto at = static_cast<std::size_t>(writer.Pick(static_cast<int>(text.size())));
            if (writer.Pick(2) == 0)
                text.erase(at, 1 + static_cast<std::size_t>(writer.Pick(3)));
            else
                text.insert(at, pieces[writer.Pick(static_cast<int>(std::size(pieces)))]);
        }
        ASSERT_EQ(FindBrokenInvariant(text), "") << testing::PrintToString(text);
    }
}

TEST(ExpressionProperty, LongRunsOfMarkTakeLinearTime)
{
    for (const char* const piece :
         {"<",  "<a",   "<a>",  "<a b='", "<a b='c' ",  "&lt",  "[", "'",
          "]]", "</a>", "a<b>", "(",      "[a].",       "a.",   " ", "\xFF",
          "\"", "--\n", "/*",   "/**/",   "case when ", "cast("}) {
        std::string text;
        while (text.size() < 100000)
            text += piece;
        EXPECT_EQ(FindBrokenInvariant(text), "") << piece;
    }
}

} // namespace
