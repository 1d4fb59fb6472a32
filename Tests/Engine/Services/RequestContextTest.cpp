#include "AQE_Convert2ModelQuerySubjectId.h"
#include "AQE_I_Authentication.h"
#include "AQE_Nag.h"
#include "AQE_RequestContext.h"
#include "AQE_ToRelationshipJoinCardinalityValue.h"
#include "HBNMessage.h"

#include <gtest/gtest.h>

namespace {

struct User : AQE_I_Authentication
{
    explicit User(std::vector<I18NString> classes) : mClasses(std::move(classes)) {}
    std::vector<I18NString> GetUserClasses() const override { return mClasses; }
    std::vector<I18NString> mClasses;
};

TEST(RequestTest, MessagesAreCopiedToTheRequestInOrder)
{
    AQE_RequestContext context;
    HBNMessage message(0xA9E29A41);
    AQE_Nag::CreateMessage(&context, QF_Message_V3::SeverityWarning, QF_Message_V3::TypeGovernor,
                           message);
    message.AddParameter(ORVMessageParm("Sales"));
    AQE_Nag::CreateMessage(&context, QF_Message_V3::SeverityError, QF_Message_V3::TypeGeneral,
                           message);
    AQE_Nag::CreateMessage(nullptr, QF_Message_V3::SeverityError, QF_Message_V3::TypeGeneral,
                           message);
    const auto& messages = context.GetUserMessages();
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0].severity, -2);
    EXPECT_EQ(messages[0].type, 4);
    EXPECT_EQ(messages[0].message.GetNumber(), 0xA9E29A41);
    EXPECT_TRUE(messages[0].message.GetParameters().empty());
    EXPECT_EQ(messages[1].message.GetText(),
              "The query subjects are not all joined, so the query contains a cross product. User "
              "classes: Sales");
}

TEST(RequestTest, UserClassesAreSeparated)
{
    const User none({});
    const User one({"Sales"});
    const User several({"Sales", "", "Finance"});
    EXPECT_EQ(AQE_GetUserClassesString(nullptr), "");
    EXPECT_EQ(AQE_GetUserClassesString(&none), "");
    EXPECT_EQ(AQE_GetUserClassesString(&one), "Sales");
    EXPECT_EQ(AQE_GetUserClassesString(&several), "Sales, , Finance");
}

TEST(RequestTest, CardinalitiesAndIdsOfQueriesBecomeThoseOfTheModel)
{
    const int expected[] = {0, 10, 11, 12, 0, 0};
    for (int value = 0; value < 6; ++value) {
        const auto cardinality = static_cast<AQE_I_QuerySpecJoin::ECardinality>(value);
        EXPECT_EQ(AQE_ToRelationshipJoinCardinalityValue(cardinality), expected[value]) << value;
    }
    const amd_id shortcut(1, 109, 5);
    EXPECT_EQ(AQE_Convert2ModelQuerySubjectId(shortcut, nullptr), shortcut);
}

} // namespace
