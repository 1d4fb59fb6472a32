#ifndef TESTS_FUZZ_REFINERRULES_H
#define TESTS_FUZZ_REFINERRULES_H

#include "Tests/Fuzz/PlainGraph.h"
#include "Tests/Fuzz/RefinerCase.h"
#include "Tests/Fuzz/RefinerRun.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace qe::test {

/// What must hold for the answers to one request, whatever the request is.
class RefinerRules
{
public:
    /// Reads the joins through the run. Refers to both.
    RefinerRules(const RefinerCase& input, RefinerRun& run);

    /// Returns what is wrong with the outcome of the operation; empty when nothing is.
    [[nodiscard]] std::string FindFault(ERefinerOperation operation,
                                        const RefinerOutcome& outcome) const;

private:
    using Info = AQE_I_Refiner::QEjoinInfo;

    /// Returns the join; null when it cannot be read.
    [[nodiscard]] const Info* Find(const amd_id& join) const;
    /// Reads the candidate joins, and weighs them as the operation does.
    [[nodiscard]] PlainGraph MakeGraph(ERefinerOperation operation) const;
    void AddRequired(PlainGraph& graph) const;
    [[nodiscard]] PlainGraph GetRequired() const;
    [[nodiscard]] int AdjustWeight(const Info& info) const;

    [[nodiscard]] std::string CheckFailure(ERefinerOperation operation, const PlainGraph& graph,
                                           const RefinerOutcome& outcome) const;
    [[nodiscard]] bool MayFailToRank() const;
    /// Growth that leaves subjects apart pays no heed to what is required, so that both together
    /// may close a ring.
    [[nodiscard]] bool MayCloseRing(const PlainGraph& graph) const;
    [[nodiscard]] std::string CheckTrees(const PlainGraph& graph,
                                         const std::vector<Ids>& paths) const;
    [[nodiscard]] std::string CheckCheapest(const PlainGraph& graph,
                                            const std::vector<Ids>& paths) const;
    [[nodiscard]] std::string CheckJoinedSubjects(const Ids& joined) const;
    [[nodiscard]] std::string CheckBetween(const PlainGraph& graph, const RefinerOutcome& outcome,
                                           const std::vector<Ids>& paths) const;
    [[nodiscard]] std::string CheckTreeJoins(const PlainGraph& graph,
                                             const RefinerOutcome& outcome) const;
    /// Returns the length of the shortest way between the two sets, as the operation reports it.
    [[nodiscard]] std::int64_t DistanceBetween(const PlainGraph& graph) const;
    /// Returns whether the required joins connect everything, so that nothing is searched.
    [[nodiscard]] bool IsConnectedByRequired() const;

    const RefinerCase& mCase;
    RefinerRun& mRun;
    std::map<amd_id, Info> mInfos;
    /// The subjects, and the ends of the joins that are required.
    std::set<amd_id> mTerminals;
};

} // namespace qe::test

#endif
