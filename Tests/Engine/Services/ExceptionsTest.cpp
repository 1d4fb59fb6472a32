#include "Engine/Services/MessageCatalogue.h"
#include "HBNException.h"
#include "ORVAssertError.h"
#include "QERes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::StrEq;

HBNException MakeCrossProductError(int parameterCount)
{
    HBNException exception(1, 101);
    HBNAddMessages(exception, 0xA9EE8A4D, parameterCount, "A, {2}", "Sales", "", "", "", "sixth");
    return exception;
}

TEST(ExceptionsTest, CaughtExceptionDescribesAllThatWasThrown)
{
    HBNException exception = MakeCrossProductError(2);
    ORVThrowable& raised = exception;
    try {
        ORV_THROW(raised, "Source/QEJoinTree", 547, "QE");
        FAIL();
    } catch (const HBNException& caught) {
        EXPECT_NE(&caught, &exception);
        EXPECT_THAT(caught.what(),
                    StrEq("Severity 1, code 101: The query subjects A, {2} cannot be joined, and "
                          "cross products are not allowed. User classes: Sales "
                          "(Source/QEJoinTree:547, QE, ORV_THROW)"));
    }
}

TEST(ExceptionsTest, AssertionThrowsOnlyWhenItsConditionFails)
{
    ORV_ASSERT(true, "ORV_ASSERT(true);", "Source/QEI_Refiner", 1);
    try {
        ORV_ASSERT(1 > 2, "ORV_ASSERT(false);", "Source/QEI_Refiner", 582);
        FAIL();
    } catch (const std::exception& caught) {
        EXPECT_THAT(caught.what(), StrEq("Assertion failed, error code 0: ORV_ASSERT(false); "
                                         "(Source/QEI_Refiner:582, ORV_THROW)"));
    }
}

TEST(ExceptionsTest, ParameterCountOutsideTheSixIsLimited)
{
    const struct
    {
        int count;
        std::size_t kept;
    } cases[] = {{-1, 0}, {0, 0}, {1, 1}, {6, 6}, {7, 6}};
    for (const auto& test : cases) {
        const HBNException exception = MakeCrossProductError(test.count);
        EXPECT_EQ(exception.GetMessages()[0].GetParameters().size(), test.kept) << test.count;
    }
}

TEST(ExceptionsTest, EveryNumberOfTheSystemHasATextOfItsOwn)
{
    const std::uint32_t numbers[] = {0xA9E09D1F, 0xA9E12896, 0xA9E143D7, 0xA9E29A41, 0xA9E5E001,
                                     0xA9E60195, 0xA9E9BA5B, 0xA9EBF43B, 0xA9EC593C, 0xA9EE8A4D};
    for (const std::uint32_t number : numbers)
        EXPECT_NE(qe::FindMessageText(number), "") << std::hex << number;
    EXPECT_EQ(QERes::getString(29), ", ");
    EXPECT_EQ(QERes::getString(340), "QueryEngine");
    EXPECT_EQ(QERes::getString(341), "");
}

TEST(ExceptionsTest, MessageWithoutTextOrWithoutParametersStaysReadable)
{
    HBNMessage unknown(0x000000AB);
    unknown.AddParameter(ORVMessageParm("one"));
    unknown.AddParameter(ORVMessageParm("two"));
    EXPECT_EQ(unknown.GetText(), "Message 0x000000AB: one, two");
    const std::vector<ORVMessageParm> parameters{ORVMessageParm("{2}"), ORVMessageParm("x")};
    EXPECT_EQ(qe::FillPlaceholders("{2}{1} {3} {0} {} {1", parameters), "x{2} {3} {0} {} {1");
}

} // namespace
