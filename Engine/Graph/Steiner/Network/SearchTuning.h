#ifndef ENGINE_GRAPH_STEINER_NETWORK_SEARCHTUNING_H
#define ENGINE_GRAPH_STEINER_NETWORK_SEARCHTUNING_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

/// The constants that steer the search for minimum Steiner trees. None of them changes which trees
/// are minimum: only how soon they are found, and which are listed when there are too many.
///
/// Each was chosen by running SteinerBenchmark over the published graphs, unless said otherwise;
/// SchemaGraphBenchmark (the schema-like graphs) was watched beside it. Work is counted in
/// half-edges looked at, never timed, so that the listed trees are the same on every machine.
namespace qe::graph::tuning {

/// How many ascents bound an exact search, and after how many settled labels it is given up.
struct SearchEffort
{
    std::size_t ascents;
    std::size_t mostSettled;
};

inline constexpr std::size_t kNoEnd = std::numeric_limits<std::size_t>::max();

// Bounding a block (BlockBounds, DualAscent).

/// Number of terminals that ascents are rooted at, without and with a guiding tree.
inline constexpr std::size_t kAscentRoots = 3;

/// After how much work a local search is cut short. Took the place of a tenth of the time, which
/// made the listed trees depend on the machine.
inline constexpr std::uint64_t kLocalSearchWork = 100'000'000;

/// What one needless entry of the guiding tree into a set weighs against the set's size: more
/// than any size that occurs, so that the size decides among equal numbers of entries only.
inline constexpr std::uint64_t kGuidePenalty = 1U << 20;

/// A set is raised at once up to so many quarters of the limit: it was just built, and building
/// it again costs more than the order is worth.
inline constexpr std::uint64_t kEagerQuarters = 5;

// Shrinking a block (BlockStages, BlockSearch).

/// One edge in so many must have been pruned for the block to be reduced and begun anew.
inline constexpr std::size_t kReducedShare = 20;

/// One terminal in so many must have a forced edge for these to be contracted. Measured on dense
/// schema-like graphs with many subjects, where terminals that meet at a hub made the search long.
inline constexpr std::size_t kContractedShare = 10;

// Exact searches (BlockSearch).

/// Before the block is bounded thoroughly, and after. Bounding it costs as much as thousands of
/// labels.
inline constexpr std::array kQuickEffort{SearchEffort{.ascents = 2, .mostSettled = 6000}};
inline constexpr std::array kMoreEffort{SearchEffort{.ascents = 16, .mostSettled = 30000}};

/// A search by table may take so many steps before the quick search and so many after it, each
/// about as much as what follows it, and so many places.
inline constexpr std::uint64_t kSmallTableSteps = 300'000;
inline constexpr std::uint64_t kTableSteps = 50'000'000;
inline constexpr std::uint64_t kTablePlaces = 1U << 20;

/// Bounded by a few ascents from roots far apart, and by more.
inline constexpr std::array kLastEfforts{SearchEffort{.ascents = 8, .mostSettled = 0},
                                         SearchEffort{.ascents = 32, .mostSettled = kNoEnd}};

/// When the bound is tight, by one part in how many of the gap the limit goes up at first, and by
/// how many ascents the search is bounded. Measured on the published graphs that lie nearly in the
/// plane; so are all constants of cut exchange below.
inline constexpr std::uint64_t kFirstStep = 8;
inline constexpr std::size_t kUpwardAscents = 4;

/// How the search for a light tree is made to run ahead: by how many ascents it is bounded, how
/// much of the gap between the bounds is added to them, and after how many labels it is given up.
inline constexpr std::size_t kDiveAscents = 4;
inline constexpr double kDiveInflation = 0.8;
inline constexpr std::size_t kDiveLabels = 10000;

/// There is a table of a node's settled labels for at most so many terminals, and when at least
/// one in so many sets is settled.
inline constexpr std::uint32_t kTableTerminals = 16;
inline constexpr std::size_t kTableSparsity = 64;

// Partial trees that stand in the way (DijkstraSteinerSearch, SeparationTest).

/// After how many settled labels a search begins to test labels for it: a test costs as much as
/// many labels, and pays only where those would be very many.
inline constexpr std::size_t kUntestedLabels = 20'000;

/// After so many tests, one in so many must have found something for the tests to go on: where few
/// do, as in graphs with many terminals, they cost more than they spare.
inline constexpr std::uint64_t kTrialTests = 2000;
inline constexpr std::uint64_t kSeparatingShare = 2;

/// How many nodes a partial tree closes at most, and after how many nodes the search around them
/// is given up. Measured on the published graphs with 30 to 40 terminals.
inline constexpr std::size_t kMostClosed = 300;
inline constexpr std::size_t kMostTurns = 300;

// Exchanging cuts (BlockSearch, CutExchange).

/// How much work goes into exchanges before the first search that they are to bound, and how much
/// of it is worth one settled label. Both were 2.5 times as great until ascents stopped at what
/// the root reaches.
inline constexpr std::uint64_t kFirstExchangeWork = 20'000'000;
inline constexpr std::uint64_t kWorkPerLabel = 400;

/// One part in so many of the gap has to be closed by exchanges for them to be of use.
inline constexpr std::uint64_t kExchangeWorth = 8;

/// Around how many terminals at most an exchange takes cuts back, and how many of ten.
inline constexpr std::size_t kMostChosen = 6;
inline constexpr std::uint32_t kTakenOfTen = 6;

/// Weights are small when they are no greater than this on average. Then 2^kGrainShift grains of
/// price make up one of weight, cuts are exchanged in pieces of so many grains at most, and around
/// so many terminals. Measured on the published graphs of a Hamming cube, as are the next ones.
inline constexpr std::uint64_t kFineWeight = 8;
inline constexpr std::uint32_t kGrainShift = 6;
inline constexpr std::uint64_t kMostGrains = 12;
inline constexpr std::size_t kMostChosenFinely = 3;

/// By how many exchanges a search with fine prices is bounded; by turns, how much more work goes
/// into each of them, and after how many settled labels the search is given up.
inline constexpr std::size_t kFineExchanges = 6;
struct FineEffort
{
    std::uint64_t work;
    std::size_t mostSettled;
};
inline constexpr std::array kFineEfforts{
    FineEffort{.work = 30'000, .mostSettled = 60'000},
    FineEffort{.work = 1'000'000, .mostSettled = 15'000},
    FineEffort{.work = 8'000'000, .mostSettled = 60'000},
    FineEffort{.work = 64'000'000, .mostSettled = kNoEnd},
};

/// So many exchanges that cost so much work have to close one part in so many of the gap, or they
/// are the last.
inline constexpr int kBatchSize = 512;
inline constexpr std::uint64_t kBatchWork = 10'000'000;
inline constexpr std::uint64_t kWorthwhileShare = 50;

// Listing and counting (SpanningBlock, SteinerSolver).

/// After how many steps of elimination the minimum spanning trees of a block are not counted: it
/// takes a block of 300 nodes that edges of one weight join. Measured on complete graphs.
inline constexpr std::uint64_t kSpanningCountSteps = 27'000'000;

// Answering without a proof (SteinerSolver, BlockBounds).

/// One part in so many of the steps is kept back to improve the tree that is answered unproven,
/// and to list trees.
inline constexpr std::uint64_t kShareOfLastTree = 20;

/// From how many terminals that tree is grown and improved.
inline constexpr std::size_t kManyStarts = 64;

/// One part in so many of the effort may go into a search that wants one tree, not all of least
/// weight: then a light tree is as good.
inline constexpr std::uint64_t kShareOfOneTree = 100;

} // namespace qe::graph::tuning

#endif
