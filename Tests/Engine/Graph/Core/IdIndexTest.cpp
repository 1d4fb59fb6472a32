#include "Engine/Graph/Core/IdIndex.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <utility>
#include <vector>

namespace qe::graph {
namespace {

// Batches of every size, with repeated ids and words of either sign, against an ordered map.
TEST(IdIndex, NumbersIdsInTheOrderOfTheirArrival)
{
    std::mt19937 random(3);
    const auto draw = [&random](int most) {
        return static_cast<std::int32_t>(random() % (2U * static_cast<unsigned>(most) + 1)) - most;
    };
    for (int round = 0; round < 40; ++round) {
        IdIndex index;
        std::map<amd_id, std::uint32_t> expected;
        for (const std::size_t size : {1U, 0U, 700U, 3U, 1U, 1U, 90U, 5000U, 2U}) {
            std::vector<amd_id> ids(size);
            for (amd_id& id : ids)
                id = {draw(1), draw(300) * 7'000'000, draw(2)};
            std::vector<std::uint32_t> places;
            for (std::uint32_t place = 0; place < size; ++place) {
                if (expected.try_emplace(ids[place], expected.size()).second)
                    places.push_back(place);
            }
            IdIndex::Addition addition = index.Prepare(ids);
            ASSERT_EQ(addition.GetPlaces(), places);
            ASSERT_EQ(index.GetCount(), expected.size() - places.size());
            index.Commit(std::move(addition));
            ASSERT_EQ(index.GetCount(), expected.size());
            for (const auto& [id, slot] : expected)
                ASSERT_EQ(index.FindSlot(id), slot);
            ASSERT_EQ(index.FindSlot({5, 0, 0}), kNoIndex);
        }
        std::uint32_t place = 0;
        for (const auto& [id, slot] : expected) {
            ASSERT_EQ(index.GetSorted()[place].GetId(), id);
            ASSERT_EQ(index.GetSorted()[place].slot, slot);
            ASSERT_EQ(index.FindPlace(id), place++);
        }
        ASSERT_FALSE(index.FindPlace({5, 0, 0}));
    }
}

} // namespace
} // namespace qe::graph
