#include "AQE_Expression.h"

#include "Engine/Expression/ParseReport.h"
#include "Tests/Engine/Expression/ExpressionInvariants.h"

#include <gtest/gtest.h>

namespace {

struct MarkupCase
{
    const char* tagged;
    const char* untagged;
};

constexpr MarkupCase kMarkupCases[] = {
    {"<refobj>[n].[q].[i]</refobj>=<refobj>[n].[r].[i]</refobj>", "[n].[q].[i]=[n].[r].[i]"},
    {"<expression><refobj id=\"7\" kind = 'a>b'>[n].[q].[i]</refobj> &gt;= 1</expression>",
     "[n].[q].[i] >= 1"},
    {"<a/>x<b /><c d='e'/>", "x"},
    {"<_n:a-1.b x:y='z'>x</_n:a-1.b>", "x"},
    // Comparisons, with and without spaces.
    {"[a].[b].[c]<[d].[e].[f]", "[a].[b].[c]<[d].[e].[f]"},
    {"x<y and y>z", "x<y and y>z"},
    {"x<y>z", "x<y>z"},
    {"x <y> z or 1<y>z or ')'<y>z or f(1)<y>z or null<y>z", nullptr},
    {"a<=b and a<>b and a>=b and a < b and a > b", nullptr},
    {"x< b>c</b>", "x< b>c"},
    {"x<-y and y>z", nullptr},
    {"x<y z>w", nullptr},
    {"x<y z=w>w", nullptr},
    {"x<y z='<'>w", nullptr},
    {"x<é>y</é>", nullptr},
    {"x<", nullptr},
    {"x</", nullptr},
    {"x<y a=\"b", nullptr},
    {"x</y", nullptr},
    {"x</y z>", nullptr},
    {"<refobj>a</refobj><<refobj>b</refobj>", "a<b"},
    {"<refobj>a</refobj><=<refobj>b</refobj>><refobj>c</refobj>", "a<=b>c"},
    // A bare tag where an operand must stand, or closed later.
    {"<y>a = b", "a = b"},
    {"a = <y>b and (<y>c)", "a = b and (c)"},
    {"a and <y>b", "a and b"},
    {"a <y>= b</y >", "a = b"},
    {"</y>a<y>b", "a<y>b"},
    {"a<y>b '</y>' [</y>]", nullptr},
    // Literals and names.
    {"'<b>''</b>' = [<b>]]</b>]<c>'&lt;'</c>", "'<b>''</b>' = [<b>]]</b>]'&lt;'"},
    {"'<b>", nullptr},
    {"x = [a<b/>", nullptr},
    // Entities.
    {"a&lt;b&gt;c</b> &lt;&gt; d &amp; e", "a<b>c <> d &amp; e"},
    // Tokens stay apart.
    {"a</b>and 1</b>.5 'x'</b>'y' a<</b>=b", "a and 1 .5 'x' 'y' a< =b"},
    {"-</b>-1 /</b>* \"x\"</b>\"y\"", "- -1 / * \"x\" \"y\""},
    // Comments.
    {"a -- <b/>&lt;\n</b>= /* '<c/> */1<d/>", "a -- <b/>&lt;\n= /* '<c/> */1"},
    {"case when a then b end /**/<y>z", nullptr},
    {"\"<b/>\"<c/>", "\"<b/>\""},
    {"<i>a</i> <i>b</i>", "a b"},
    {"[n].<i>[q]</i>.[i]</i>(a</i>)", "[n].[q].[i](a)"},
};

TEST(MarkupRemover, LeavesTagsOutAndKeepsComparisons)
{
    for (const auto& [tagged, untagged] : kMarkupCases) {
        EXPECT_EQ(AQE_Expression::GetUntaggedExpression(tagged).ToStdString(),
                  untagged == nullptr ? tagged : untagged)
            << tagged;
        EXPECT_EQ(FindBrokenInvariant(tagged), "") << tagged;
    }
}

TEST(MarkupRemover, ReportsReferencesAndErrorsWhereTheyStandInTheTaggedText)
{
    const std::string text = "<r>[n].[é].[i]</r>&lt;1\r\nand <r a='\n'>[n].[q]]]</r> <> [z] $";
    const auto report = qe::expression::FindReferences(text);
    std::string seen;
    for (const auto& [names, position] : report.references) {
        seen += std::to_string(position.line) + ':' + std::to_string(position.column) +
                names.back().c_str() + ' ';
    }
    EXPECT_EQ(seen, "1:4i 3:3q] 3:20z ");
    ASSERT_TRUE(report.error);
    EXPECT_EQ(report.error->position, (qe::TextPosition{3, 24}));
    EXPECT_EQ(report.error->expected, "an operator or the end of the text");
    EXPECT_EQ(report.error->found, "\"$\"");

    EXPECT_FALSE(qe::expression::FindReferences("<r>a</r> &gt; 1").error);
    const auto atEnd = qe::expression::FindReferences("a = <r></r>");
    ASSERT_TRUE(atEnd.error);
    EXPECT_EQ(atEnd.error->position, (qe::TextPosition{1, 12}));
}

} // namespace
