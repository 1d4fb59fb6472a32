#include "HostTables.h"

#include "IdClass.h"

#include <algorithm>
#include <string>

namespace host {

namespace {

constexpr amd_id kFolder{0, IdClassFolder, 1};
constexpr amd_id kTrips{0, IdClassQuerySubject, 1};
constexpr amd_id kRiders{0, IdClassQuerySubject, 2};
constexpr amd_id kStations{0, IdClassQuerySubject, 3};
constexpr amd_id kCities{0, IdClassQuerySubject, 4};
constexpr amd_id kCalendar{0, IdClassQuerySubject, 5};
constexpr amd_id kPay{0, IdClassQuerySubject, 6};
constexpr amd_id kStart{0, IdClassShortcut, 1};
constexpr amd_id kEnd{0, IdClassShortcut, 2};

constexpr BMT_I_Association::CardinalityRange kOne{BMT_I_Association::CardinalityOne,
                                                   BMT_I_Association::CardinalityOne};
constexpr BMT_I_Association::CardinalityRange kMany{BMT_I_Association::CardinalityOne,
                                                    BMT_I_Association::CardinalityMany};

Row Subject(const amd_id& id, const char* name)
{
    Row row;
    row.id = id;
    row.name = name;
    row.parent = kFolder;
    return row;
}

Row Shortcut(const amd_id& id, const char* name, const amd_id& target)
{
    Row row = Subject(id, name);
    row.target = target;
    return row;
}

/// Joins many rows of one end to one row of the other.
Row Join(int number, const char* name, const amd_id& many, const amd_id& one, const char* condition)
{
    Row row = Subject({0, IdClassRelationship, number}, name);
    row.left = many;
    row.right = one;
    row.leftRange = kMany;
    row.rightRange = kOne;
    row.condition = condition;
    return row;
}

std::vector<amd_id> CollectIds(bool (*wanted)(int classCode))
{
    std::vector<amd_id> ids;
    for (const Row& row : GetTables()) {
        if (wanted(row.id.classCode))
            ids.push_back(row.id);
    }
    return ids;
}

} // namespace

const std::vector<Row>& GetTables()
{
    static const std::vector<Row> tables{
        Subject(kFolder, "Rentals"),
        Subject(kTrips, "Trips"),
        Subject(kRiders, "Riders"),
        Subject(kStations, "Stations"),
        Subject(kCities, "Cities"),
        Subject(kCalendar, "Calendar"),
        Subject(kPay, "Pay"),
        Shortcut(kStart, "Start date", kCalendar),
        Shortcut(kEnd, "End date", kCalendar),
        Join(1, "trip to rider", kTrips, kRiders, "Trips.rider = Riders.id"),
        Join(2, "rider to city", kRiders, kCities, "Riders.home = Cities.id"),
        Join(3, "trip to station", kTrips, kStations, "Trips.station = Stations.id"),
        Join(4, "station to city", kStations, kCities, "Stations.city = Cities.id"),
        Join(5, "trip to start", kTrips, kStart, "Trips.started = Calendar.day"),
        Join(6, "trip to end", kTrips, kEnd, "Trips.ended = Calendar.day"),
    };
    return tables;
}

std::vector<amd_id> FindIds(const std::vector<const char*>& names)
{
    std::vector<amd_id> ids;
    for (const std::string name : names) {
        for (const Row& row : GetTables()) {
            if (row.name == name)
                ids.push_back(row.id);
        }
    }
    return ids;
}

std::string GetName(const amd_id& id)
{
    const std::vector<Row>& tables = GetTables();
    const auto row = std::find_if(tables.begin(), tables.end(),
                                  [&](const Row& candidate) { return candidate.id == id; });
    return row == tables.end() ? ToText(id) : row->name;
}

std::vector<amd_id> GetNodes()
{
    return CollectIds([](int classCode) {
        return classCode == IdClassQuerySubject || classCode == IdClassShortcut;
    });
}

std::vector<amd_id> GetJoins()
{
    return CollectIds([](int classCode) { return classCode == IdClassRelationship; });
}

} // namespace host
