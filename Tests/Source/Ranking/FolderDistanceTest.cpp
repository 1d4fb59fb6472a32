#include "Ranking/FolderDistance.h"

#include "Tests/Support/CountingGateway.h"
#include "Tests/Support/ModelText.h"

#include <gmock/gmock.h>

namespace {

using qe::test::CountingGateway;
using qe::test::ModelText;

TEST(FolderDistance, GoesOverTheNearestCommonFolder)
{
    const ModelText model(R"(
        folder Sales
        Orders >- Lines : together
        folder Sales/East/Port
        Ship, Crew
        folder Else
        Island
        folder
        Loose
        folder Sales
        Ship >- Crew : above; Orders >- Ship : half; Orders >- Island : apart
        Orders >- Loose : outside; Orders >= Ship : second; Orders >~ Ship : query
        folder Sales/West
        Orders >- Ship : beside on [Model].[Orders].[Key] = [Model].[Ship].[Key]
        Orders(Key), Ship(Key)
        stand -> beside : Orders, Ship
        Boat -> Ship; Boat >- Ship : shortcut
        folder Sales/East/Port/Quay/Berth
        Ship >- Crew : below
    )");
    const struct
    {
        const char* join;
        int distance;
    } rows[] = {
        {"together", 0}, {"above", 4}, {"half", 2},  {"apart", 0},  {"outside", 0}, {"second", 0},
        {"beside", 4},   {"stand", 4}, {"below", 4}, {"Orders", 0}, {"query", 0},   {"shortcut", 3},
    };
    for (const auto& row : rows)
        EXPECT_EQ(qe::FolderDistance(model.Id(row.join), &model.GetGateway(), nullptr),
                  row.distance)
            << row.join;

    CountingGateway gateway(model.GetGateway());
    gateway.Replace({.id = model.Id("Sales"), .parent = model.Id("Port")});
    EXPECT_EQ(qe::FolderDistance(model.Id("beside"), &gateway, nullptr), 3) << "a cycle";
    gateway.Hide(model.Id("Boat"));
    EXPECT_EQ(qe::FolderDistance(model.Id("shortcut"), &gateway, nullptr), 0)
        << "an unreadable join";
    gateway.Hide(model.Id("Ship"));
    EXPECT_EQ(qe::FolderDistance(model.Id("half"), &gateway, nullptr), 0);
    EXPECT_EQ(qe::FolderDistance(model.Id("half"), nullptr, nullptr), 0);
}

} // namespace
