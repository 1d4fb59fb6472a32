#include "Benchmarks/Galaxy.h"

#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"

#include <array>
#include <nlohmann/json.hpp>

namespace {

using qe::model::ModelBuilder;

constexpr std::size_t kTables = 500;
constexpr std::size_t kFacts = 100;
constexpr std::size_t kDimensions = kTables - kFacts;
/// Dimensions that refer to none.
constexpr std::size_t kTops = 8;
constexpr std::size_t kItems = 8;
constexpr std::size_t kKeys = 4;

struct Place
{
    std::size_t space = 0;
    std::size_t dimension = 0;
};

std::string SpaceName(std::size_t space)
{
    return "Galaxy " + std::to_string(space);
}

std::string FactName(std::size_t space, std::size_t fact)
{
    return "Fact " + std::to_string(space * kFacts + fact);
}

std::string DimensionName(const Place& place)
{
    return "Dimension " + std::to_string(place.space * kDimensions + place.dimension);
}

/// Returns the dimensions that a fact refers to, the last of them in the next namespace.
std::array<Place, kKeys> DimensionsOf(std::size_t spaces, std::size_t space, std::size_t fact)
{
    std::array<Place, kKeys> places;
    for (std::size_t key = 0; key < kKeys; ++key)
        places[key] = {space, (fact * 37 + key * 101 + space * 11) % kDimensions};
    places.back().space = (space + 1) % spaces;
    return places;
}

Place ParentOf(const Place& place)
{
    return {place.space, place.dimension < kTops ? place.dimension : place.dimension / 3};
}

class GalaxyMaker
{
public:
    explicit GalaxyMaker(const GalaxySize& size) : mSpaces(size.tables / kTables) {}

    qe::tool::ToolModel Make()
    {
        for (std::size_t space = 0; space < mSpaces; ++space)
            AddTables(space);
        for (std::size_t space = 0; space < mSpaces; ++space)
            AddJoins(space);
        return {mBuilder.Build()};
    }

private:
    void AddTables(std::size_t space)
    {
        mSpaceIds.push_back(mBuilder.AddNamespace(SpaceName(space)));
        for (std::size_t fact = 0; fact < kFacts; ++fact)
            AddTable(space, FactName(space, fact));
        for (std::size_t dimension = 0; dimension < kDimensions; ++dimension)
            AddTable(space, DimensionName({space, dimension}));
    }

    void AddTable(std::size_t space, const std::string& name)
    {
        const amd_id subject =
            mBuilder.AddQuerySubject(mSpaceIds[space], name, {.source = "warehouse." + name});
        for (std::size_t item = 0; item < kItems; ++item)
            mBuilder.AddItem(subject, "Key " + std::to_string(item));
    }

    void AddJoins(std::size_t space)
    {
        for (std::size_t fact = 0; fact < kFacts; ++fact) {
            std::size_t key = 0;
            for (const Place& place : DimensionsOf(mSpaces, space, fact))
                AddJoin(space, FactName(space, fact), place, ++key);
        }
        for (std::size_t dimension = kTops; dimension < kDimensions; ++dimension) {
            const Place place{space, dimension};
            AddJoin(space, DimensionName(place), ParentOf(place), 1);
        }
    }

    void AddJoin(std::size_t space, const std::string& from, const Place& to, std::size_t key)
    {
        const std::string left = '[' + SpaceName(space) + "].[" + from + ']';
        const std::string right = '[' + SpaceName(to.space) + "].[" + DimensionName(to) + ']';
        mBuilder.AddRelationship(mSpaceIds[space], from + "-" + DimensionName(to),
                                 {left, qe::model::kOneToMany}, {right, qe::model::kOneToOne},
                                 left + ".[Key " + std::to_string(key) + "] = " + right +
                                     ".[Key 0]");
    }

    std::size_t mSpaces;
    ModelBuilder mBuilder;
    std::vector<amd_id> mSpaceIds;
};

} // namespace

qe::tool::ToolModel MakeGalaxy(const GalaxySize& size)
{
    return GalaxyMaker(size).Make();
}

std::vector<std::string> MakeGalaxyRequests(const GalaxySize& size, std::size_t count)
{
    const std::size_t spaces = size.tables / kTables;
    std::vector<std::string> requests;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t number = i * 7 % (spaces * kFacts);
        const std::size_t space = number / kFacts;
        const std::size_t fact = number % kFacts;
        nlohmann::ordered_json subjects{FactName(space, fact)};
        for (const Place& place : DimensionsOf(spaces, space, fact)) {
            subjects.push_back(DimensionName(place));
            subjects.push_back(DimensionName(ParentOf(place)));
        }
        requests.push_back(nlohmann::ordered_json{{"id", i}, {"subjects", subjects}}.dump());
    }
    return requests;
}
