#include "AQE_Expression.h"

#include "Engine/Expression/ReferenceResolver.h"
#include "HBNException.h"
#include "Tests/Engine/Expression/ExpressionInvariants.h"
#include "amdi_gateway.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct PrintCase
{
    const char* text;
    const char* printed;
};

constexpr PrintCase kPrintCases[] = {
    {"[ns] . [qs].\n[it]=1", "[ns].[qs].[it] = 1"},
    {"[a]]b].[c[d].[ ''<x>]", "[a]]b].[c[d].[ ''<x>]"},
    {"[Größe].[名前]='été'", "[Größe].[名前] = 'été'"},
    {"a!=b or c<>d", "a <> b OR c <> d"},
    {"'it''s' || ''||'a]b'", "'it''s' || '' || 'a]b'"},
    {".5 + 5. + 1.5E-3 - 2e+4 - 007", ".5 + 5. + 1.5E-3 - 2e+4 - 007"},
    {"a oR b AnD c or d", "a OR b AND c OR d"},
    {"((a or b)) and (c and (d and e)) and (f or g)", "(a OR b) AND c AND d AND e AND (f OR g)"},
    {"(not (a = b)) and not (c and d)", "NOT a = b AND NOT (c AND d)"},
    {"(not a) = b", "(NOT a) = b"},
    {"not(not(a))", "NOT NOT a"},
    {"(a=b)=(c<d)", "(a = b) = (c < d)"},
    {"((a-b)-c)-(d-(e+f))", "a - b - c - (d - (e + f))"},
    {"(a*b)/c*(d/e)+(f*g)", "a * b / c * (d / e) + f * g"},
    {"(a+b)*-(c-d)", "(a + b) * -(c - d)"},
    {"- - (-1)", "- - -1"},
    {"(a||b)||(c||(d+e))||(f=g)", "a || b || c || d + e || (f = g)"},
    {"a||b=c+d", "a || b = c + d"},
    {"x_1.f$ ( (a), (b or c) ,g())", "x_1.f$(a, b OR c, g())"},
    {"a in(1,('x'),(b))", "a IN (1, 'x', b)"},
    {"(a not in (1)) and not (a in (1))", "a NOT IN (1) AND NOT a IN (1)"},
    {"a not like ('x'||b) escape ('!')", "a NOT LIKE 'x' || b ESCAPE '!'"},
    {"a like 'x%' and b", "a LIKE 'x%' AND b"},
    {"a+1 between (b) and (c) and d not between e and (f and g)",
     "a + 1 BETWEEN b AND c AND d NOT BETWEEN e AND (f AND g)"},
    {"a is null or (b is not null) or null", "a IS NULL OR b IS NOT NULL OR null"},
    {"a is distinct from b + 1 and c is not distinct from (d = e)",
     "a IS DISTINCT FROM b + 1 AND c IS NOT DISTINCT FROM (d = e)"},
    {"distinct = from", "distinct = from"},
    {"(a is null) is null", "(a IS NULL) IS NULL"},
    {"[one]", "[one]"},
    {"\"n s\" . \"q\"\"]\".[i]<\"one\"", "[n s].[q\"]]].[i] < [one]"},
    {"a -- b\n= /* 'c' */ 1--", "a = 1"},
    {"cAse when (a or b) then (-1) else(c) End+1", "CASE WHEN a OR b THEN -1 ELSE c END + 1"},
    {"case (a) when 1 then 'x' when 2 then (case when b then c end)end is null",
     "CASE a WHEN 1 THEN 'x' WHEN 2 THEN CASE WHEN b THEN c END END IS NULL"},
    {"-cast((a||b) as\nvarchar ( 9 ))", "-CAST(a || b AS varchar(9))"},
    {"Cast(a as Decimal( 9,2 )) = lib.cast(timestamp) * cast(b as timestamp (3) with time "
     "zone)",
     "CAST(a AS Decimal(9,2)) = lib.cast(timestamp) * CAST(b AS timestamp(3) with time zone)"},
    {"[a].[b].[c].[d].[e]", "[a].[b].[c].[d].[e]"},
};

TEST(Expression, IsWrittenInOneFormWithFewParentheses)
{
    for (const auto& [text, printed] : kPrintCases) {
        EXPECT_EQ(PrintTree(*ParseText(text)), printed) << text;
        EXPECT_EQ(FindBrokenInvariant(text), "") << text;
    }
}

struct ErrorCase
{
    const char* text;
    const char* place;
    const char* expected;
    const char* found;
};

constexpr const char* kOperand = "an operand";
constexpr const char* kEnd = "an operator or the end of the text";

constexpr ErrorCase kErrorCases[] = {
    {"", "line 1, column 1", kOperand, "the end of the text"},
    {"a =", "line 1, column 4", kOperand, "the end of the text"},
    {"a\n= 'é' b", "line 2, column 7", kEnd, "\"b\""},
    {"a = b = c", "line 1, column 7", kEnd, "\"=\""},
    {"not a = b = c", "line 1, column 11", kEnd, "\"=\""},
    {"a is null = b", "line 1, column 11", kEnd, "\"=\""},
    {"a = not b", "line 1, column 5", kOperand, "\"not\""},
    {"(a", "line 1, column 3", "an operator or ')'", "the end of the text"},
    {"f(a b)", "line 1, column 5", "an operator, ',' or ')'", "\"b\""},
    {"a in 1", "line 1, column 6", "'('", "\"1\""},
    {"a in ()", "line 1, column 7", kOperand, "\")\""},
    {"a is distinct b", "line 1, column 15", "FROM", "\"b\""},
    {"a not = b", "line 1, column 7", "IN, LIKE or BETWEEN", "\"=\""},
    {"a not is null", "line 1, column 7", "IN, LIKE or BETWEEN", "\"is\""},
    {"a between 1 or 2", "line 1, column 13", "an operator or AND", "\"or\""},
    {"a is 1", "line 1, column 6", "NULL, NOT NULL or DISTINCT FROM", "\"1\""},
    {"a is not 1", "line 1, column 10", "NULL or DISTINCT FROM", "\"1\""},
    {"[a].[]", "line 1, column 5", "a name between brackets or double quotes", "\"[]\""},
    {"[a].b", "line 1, column 5", "a name between brackets or double quotes", "\"b\""},
    {"a.[b]", "line 1, column 3", "a name", "\"[b]\""},
    {"[a].[b", "line 1, column 5", "a name that ends in ']'", "\"[b\""},
    {"[a]] = 1", "line 1, column 1", "a name that ends in ']'", "\"[a]] = 1\""},
    {"a = 'it''s", "line 1, column 5", "a text that ends in a single quote", "\"'it''s\""},
    {"[a].\"b", "line 1, column 5", "a name that ends in a double quote", "\"\"b\""},
    {"a\n /*/ b", "line 2, column 2", "a comment that ends in '*/'", "\"/*/ b\""},
    {"case a then b", "line 1, column 8", "an operator or WHEN", "\"then\""},
    {"case when a end", "line 1, column 13", "an operator or THEN", "\"end\""},
    {"case when a then b )", "line 1, column 20", "an operator, WHEN, ELSE or END", "\")\""},
    {"case when a then b else c when", "line 1, column 27", "an operator or END", "\"when\""},
    {"cast a", "line 1, column 6", "'('", "\"a\""},
    {"cast(a, b)", "line 1, column 7", "an operator or AS", "\",\""},
    {"cast(a as 'b')", "line 1, column 11", "a type", "\"'b'\""},
    {"cast(a as b(-1))", "line 1, column 13", "a size", "\"-\""},
    {"cast(a as b(1)", "line 1, column 15", "'(', ')' or more of the type", "the end of the text"},
    {"1.2.3", "line 1, column 4", kEnd, "\".3\""},
    {"1,5", "line 1, column 2", kEnd, "\",\""},
    {"a & b", "line 1, column 3", kEnd, "\"&\""},
    {"a 'ééééééééééééééééééééé", "line 1, column 3", kEnd, "\"'ééééééééééééééééééé...\""},
};

TEST(Expression, RefusesOtherTextWithPlaceAndExpectation)
{
    for (const auto& [text, place, expected, found] : kErrorCases) {
        try {
            ADD_FAILURE() << text << " reads as " << DescribeTree(*ParseText(text));
        } catch (const HBNException& exception) {
            ASSERT_EQ(exception.GetMessages().size(), 1U);
            const HBNMessage& message = exception.GetMessages().front();
            EXPECT_EQ(exception.GetSeverity(), 1);
            EXPECT_EQ(message.GetNumber(), 0xA9E5E001U);
            std::vector<std::string> parameters;
            for (const ORVMessageParm& parameter : message.GetParameters())
                parameters.push_back(parameter.GetText().ToStdString());
            EXPECT_THAT(parameters, ElementsAre(place, expected, found, "test")) << text;
            EXPECT_EQ(exception.GetLocation().file, "Engine/Expression/AQE_Expression");
            EXPECT_EQ(exception.GetComponent(), "QE");
            EXPECT_THAT(exception.what(), HasSubstr(place));
        }
    }
}

TEST(Expression, BoundsNestingButNotLength)
{
    const PrintCase nests[] = {{"(", ")"},         {"f(", ")"},     {"NOT ", ""},
                               {"- ", ""},         {"1 IN (", ")"}, {"CASE WHEN 1 THEN ", " END"},
                               {"CAST(", " AS t)"}};
    for (const auto& [open, close] : nests) {
        const auto nest = [open = open, close = close](int depth) {
            std::string text;
            for (int i = 0; i < depth; ++i)
                text += open;
            text += "1 ";
            for (int i = 0; i < depth; ++i)
                text += close;
            return text;
        };
        EXPECT_EQ(FindBrokenInvariant(nest(200)), "") << open;
        EXPECT_NO_THROW((void)ParseText(nest(200))) << open;
        EXPECT_THROW((void)ParseText(nest(201)), HBNException) << open;
        EXPECT_THROW((void)ParseText(nest(100000)), HBNException) << open;
    }
    for (const char* const op : {" AND ", " OR ", " + ", " - ", " * ", " || ", ", "}) {
        std::string text = "1 IN (a";
        for (int i = 0; i < 50000; ++i)
            text += std::string(op) + 'a';
        text += ')';
        EXPECT_EQ(PrintTree(*ParseText(text)), text) << op;
    }
}

class NamingGateway : public amdi_gateway, public qe::expression::ReferenceResolver
{
public:
    amdi_object* GetObject(const amd_id&) override { return nullptr; }
    I18NLocale GetLocale(const amd_id&) override { return {}; }
    amd_id GetQualifierId(amd_id) override { return {}; }

    std::optional<qe::expression::ResolvedReference>
    ResolveReference(const std::vector<I18NString>& names) override
    {
        const auto found = mKnown.find(names);
        if (found == mKnown.end())
            return std::nullopt;
        return found->second;
    }

    std::map<std::vector<I18NString>, qe::expression::ResolvedReference> mKnown;
};

TEST(Expression, ResolvesReferencesThroughTheGatewayAndIsRetargeted)
{
    const amd_id item(0, 101, 7);
    const amd_id subject(0, 100, 3);
    const amd_id shortcut(0, 109, 4);
    NamingGateway gateway;
    gateway.mKnown[{"ns", "s", "i"}] = {item, subject};
    gateway.mKnown[{"ns", "short]cut", "i"}] = {item, shortcut};
    gateway.mKnown[{"one"}] = {item, subject};
    const std::unique_ptr<AQE_Expression> tree(AQE_Expression::Create(
        "[ns].[s].[i] = f([ns].[short]]cut].[i]) AND [ns].[S].[i] IN (1, [one])", &gateway, "",
        I18NLocale()));

    const auto references = CollectReferences(*tree);
    ASSERT_EQ(references.size(), 4U);
    const amd_id expected[][2] = {{item, subject}, {item, shortcut}, {{}, {}}, {{}, {}}};
    for (std::size_t i = 0; i < references.size(); ++i) {
        EXPECT_EQ(references[i]->GetReferencedId(), expected[i][0]) << i;
        EXPECT_EQ(references[i]->GetQuerySubjectId(), expected[i][1]) << i;
    }
    EXPECT_THAT(references[1]->GetNamePath(),
                ElementsAre(I18NString("ns"), I18NString("short]cut"), I18NString("i")));

    EXPECT_THAT(references[3]->GetNamePath(), ElementsAre(I18NString("one")));

    references[0]->SetQuerySubjectId(shortcut);
    references[0]->SetNamePath({"n]s", "new"});
    tree->SetNamePath({"x"});
    tree->SetQuerySubjectId(subject);
    EXPECT_EQ(references[0]->GetQuerySubjectId(), shortcut);
    EXPECT_EQ(references[0]->GetReferencedId(), item);
    EXPECT_EQ(PrintTree(*tree),
              "[n]]s].[new] = f([ns].[short]]cut].[i]) AND [ns].[S].[i] IN (1, [one])");
    EXPECT_EQ(tree->GetQuerySubjectId(), amd_id());
}

TEST(Expression, NamesAnItemWithoutQualifierByThreeNames)
{
    const amd_id item(0, 101, 7);
    const amd_id subject(0, 100, 3);
    NamingGateway gateway;
    gateway.mKnown[{"s", "i"}] = {item, subject};
    gateway.mKnown[{"ns", "s"}] = {subject, subject};
    const std::string text = "[s].[i] = [ns].[s] + [s].[unknown]";
    const std::unique_ptr<AQE_Expression> tree(
        AQE_Expression::Create(text, &gateway, "", I18NLocale()));
    const auto references = CollectReferences(*tree);
    ASSERT_EQ(references.size(), 3U);
    EXPECT_THAT(references[0]->GetNamePath(), ElementsAre(I18NString(), "s", "i"));
    EXPECT_THAT(references[1]->GetNamePath(), ElementsAre("ns", "s"));
    EXPECT_THAT(references[2]->GetNamePath(), ElementsAre("s", "unknown"));
    EXPECT_EQ(PrintTree(*tree), text);

    references[0]->SetNamePath({"ns", "x", "i"});
    references[1]->SetNamePath({"", "x.]", "[i"});
    EXPECT_EQ(PrintTree(*tree), "[ns].[x].[i] = [x.]]].[[i] + [s].[unknown]");
}

} // namespace
