#ifndef TESTS_SOURCE_REFERENCE_REQUESTDRAW_H
#define TESTS_SOURCE_REFERENCE_REQUESTDRAW_H

#include "AQE_Governors.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace qe::test {

using Ids = std::vector<amd_id>;

// The last of the virtual operations is done twice, with avoided joins and without.
constexpr std::size_t kOperationCount = 7;

/// The lists of all operations.
struct Lists
{
    Ids subjects;
    Ids secondSet;
    Ids favouredJoins;
    Ids requiredJoins;
    Ids avoidedJoins;
    Ids furtherAvoidedJoins;
    Ids nodes;
    Ids joins;
    Ids favouredSubjects;
};

/// What a host hands over beside the lists: its join cache knows joins by weights of its own, also
/// such as its gateway hides.
struct HostDraw
{
    Ids hidden;
    bool hasCache = true;
    std::map<amd_id, int> weights;
    int command = 1;
    std::optional<AQE_Governors> governors;
};

/// A request and what it is asked, one set of lists after the other.
struct Draw
{
    std::string text;
    HostDraw own;
    /// For the operation that brings its own services.
    HostDraw other;
    AQE_Governors shortcutGovernors;
    bool useFactTableCount = false;
    bool useStraightestPath = false;
    std::optional<std::uint32_t> choice;
    bool newAlgo = false;
    bool isGovernorOff = false;
    std::vector<Lists> lists;
    std::vector<bool> hasShortcutInfo;
    /// The operations, in the order in which they are done with each of the lists.
    std::vector<int> operations;
};

/// Draws a request with many ties, parallel joins and shortcuts of shortcuts.
[[nodiscard]] Draw DrawRequest(std::mt19937& random);

} // namespace qe::test

#endif
