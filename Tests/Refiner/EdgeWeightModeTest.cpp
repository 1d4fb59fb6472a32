#include "AQE_I_Refiner.h"
#include "Engine/Settings/SettingsOverride.h"
#include "ORVAssertError.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

TEST(EdgeWeights, FollowTheModeThatWasReadFirst)
{
    const qe::SettingsOverride mode("General Options", "FFJoins", 0);
    std::vector<int> weights;
    for (int type = 0; type < 6; ++type)
        weights.push_back(
            AQE_I_Refiner::GetEdgeWeightForType(static_cast<AQE_I_Refiner::EEdgeType>(type)));
    EXPECT_THAT(weights, ElementsAre(1, 1, 5, 2, 11, 8888));
    qe::SettingsOverride::Set("General Options", "FFJoins", 3);
    EXPECT_EQ(AQE_I_Refiner::GetFFJoinsMode(), 0);

    try {
        (void)AQE_I_Refiner::GetEdgeWeightForType(static_cast<AQE_I_Refiner::EEdgeType>(6));
        ADD_FAILURE();
    } catch (const ORVAssertError& error) {
        EXPECT_EQ(error.GetLocation().line, 609);
    }
}

} // namespace
