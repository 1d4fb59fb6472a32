#ifndef SOURCE_JOINS_HOSTNUMBERS_H
#define SOURCE_JOINS_HOSTNUMBERS_H

#include <cstdint>

/// What hosts match on: message numbers, source names and lines, numbers of texts. They are part
/// of the interface. The sources and lines are names of failures, as support tools know them, and
/// have nothing to do with where the code stands today; they stay when it moves.
namespace qe::host {

/// Where a failure is reported from.
struct SourcePlace
{
    const char* source = "";
    int line = 0;
};

/// A failure that reaches the caller as an HBNException.
struct Failure
{
    int severity = 1;
    int code = 0;
    std::uint32_t messageNumber = 0;
    SourcePlace place;
};

/// A broken invariant, which reaches the caller as an ORVAssertError.
struct BrokenInvariant
{
    const char* text = "";
    SourcePlace place;
};

/// A path selector chose a position that is not in the list it was given, for a path that connects
/// all subjects.
inline constexpr Failure kWrongChoice{
    .severity = 1, .code = 1, .messageNumber = 0xA9EC593C, .place = {"Source/Refiner", 185}};
/// The same for a path from one group of subjects to another.
inline constexpr Failure kWrongChoiceBetweenGroups{
    .severity = 1, .code = 1, .messageNumber = 0xA9EC593C, .place = {"Source/Refiner", 303}};

/// Subjects cannot be connected, and the governor forbids a cross product: the cheapest-trees
/// search found no tree. The message takes the names of the subjects and the user's classes.
inline constexpr Failure kCrossProductOfCheapestTrees{
    .severity = 1, .code = 101, .messageNumber = 0xA9EE8A4D, .place = {"Source/QEJoinTree", 547}};
/// The same, when the graph found no tree of shortest paths.
inline constexpr Failure kCrossProductOfShortestPaths{
    .severity = 1, .code = 101, .messageNumber = 0xA9EE8A4D, .place = {"Source/QEJoinTree", 935}};
/// The same, when the pairwise growth met two subjects without a path between them.
inline constexpr Failure kCrossProductOfPair{
    .severity = 1, .code = 101, .messageNumber = 0xA9EE8A4D, .place = {"Source/QEJoinTree", 1088}};
/// The warning in its place when the governor only warns. It takes the user's classes.
inline constexpr std::uint32_t kCrossProductWarning = 0xA9E29A41;

/// The fact finder got a join whose right maximum is no cardinality, beside a to-one left end.
inline constexpr Failure kRightUnusableBesideOne{
    .severity = 1, .code = -1, .messageNumber = 0xA9E9BA5B, .place = {"Source/QEFactFinder", 128}};
/// The fact finder got a join that is to-many at both ends.
inline constexpr Failure kManyToManyJoin{
    .severity = 1, .code = -1, .messageNumber = 0xA9E12896, .place = {"Source/QEFactFinder", 141}};
/// The fact finder got a join whose right maximum is no cardinality, beside a to-many left end.
inline constexpr Failure kRightUnusableBesideMany{
    .severity = 1, .code = -1, .messageNumber = 0xA9E9BA5B, .place = {"Source/QEFactFinder", 147}};
/// The fact finder got a join whose left maximum is no cardinality.
inline constexpr Failure kLeftUnusable{
    .severity = 1, .code = -1, .messageNumber = 0xA9EBF43B, .place = {"Source/QEFactFinder", 154}};
/// The fact finder got joins by which a query subject is a dimension of itself.
inline constexpr Failure kCyclicFacts{
    .severity = 1, .code = -1, .messageNumber = 0xA9E09D1F, .place = {"Source/QEFactFinder", 316}};

/// A weight was asked for a type of edge that there is not, with the default weights.
inline constexpr BrokenInvariant kUnknownEdgeTypeByDefault{.text = "ORV_ASSERT(false);",
                                                           .place = {"Source/QEI_Refiner", 582}};
/// The same with the weights that the setting "FFJoins" turns on.
inline constexpr BrokenInvariant kUnknownEdgeType{.text = "ORV_ASSERT(false);",
                                                  .place = {"Source/QEI_Refiner", 609}};
/// A join that the graph lists at a query subject does not touch it, or cannot be read any more.
inline constexpr BrokenInvariant kStrayJoinAtEntity{
    .text = "ORV_ASSERT(right == mMinimumSpanningTreeEntities [i] || "
            "left == mMinimumSpanningTreeEntities [i]);",
    .place = {"Source/QEJoinTree", 1305}};
/// There is no join between two query subjects that were found to be joined, or it cannot be read
/// any more.
inline constexpr BrokenInvariant kMissingJoinOfPath{
    .text = "ORV_ASSERT(false);", .place = {"Source/QEMainObjectPathSelector", 465}};

/// The text that names the log, and the context in which conditions are parsed.
inline constexpr long kComponentNameText = 340;
/// The text between the names of subjects in a message.
inline constexpr long kNameSeparatorText = 29;

/// The component and the message that introduce the log entry about shortcut groups.
inline constexpr std::uint32_t kShortcutLogComponent = 0xA9E143D7;
inline constexpr std::uint32_t kShortcutLogMessage = 0xA9E60195;

} // namespace qe::host

#endif
