#ifndef SOURCE_QEJOINTREE_H
#define SOURCE_QEJOINTREE_H

#include "AQE_I_UndirectedGraph.h"
#include "AUT_RefPtr.h"
#include "JoinTree/CandidateShelf.h"
#include "JoinTree/JoinTreeRequest.h"
#include "Joins/JoinInfoReader.h"
#include "amd_id.h"

#include <cstdint>
#include <iosfwd>
#include <map>
#include <set>
#include <utility>
#include <vector>

class AQE_I_QuerySubjectShortcutInfo;
class AQE_RequestContext;
class amdi_gateway;
struct AQE_Governors;

namespace qe {
class CandidateGraph;
}

/// Decides which joins connect the query subjects of one request.
///
/// A join tree loads the candidate nodes and joins into the full graph, whose weights follow from
/// the kinds of the joins, and grows the tree graph in it until every query subject is connected.
/// With the setting "NewAlgo" (on by default) it takes all trees of least weight at once;
/// otherwise it merges the shortest paths between pairs of query subjects, shortest first, and
/// then adds every other join between the query subjects it has reached, so that the alternatives
/// can be ranked.
///
/// All work is done in the constructor; the accessors read what it found. Pointers are borrowed
/// and must outlive the tree; governors, request context and shortcut information may be null.
/// Where nothing is built, the accessors read an empty tree. Exceptions of the gateway pass
/// through, and so does the error of the cross-product governor. An ORVAssertError is raised when
/// the pairwise algorithm has to close the tree at a join that it cannot read, as synthetic
/// shortcut joins are.
///
/// Requests come as records. The constructors with one argument for each list are those of the
/// engine's other callers, and keep their order.
class AQE_JoinTree
{
public:
    using Ids = std::vector<amd_id>;
    using EndPair = std::pair<amd_id, amd_id>;

    /// Connects the subjects of the request. When subjects or nodes are empty nothing is built.
    AQE_JoinTree(const qe::RefinerServices& services, const qe::JoinTreeRequest& request);

    /// Finds the paths between two sets and writes them to `result`.
    AQE_JoinTree(const qe::RefinerServices& services, const qe::TwoSetRequest& request,
                 const qe::TwoSetResult& result);

    /// The standard use: Connect, or with `connectivityOnly` ConnectivityOnly. `avoidedJoins` and
    /// `shortcutInfo` may be null.
    AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                 const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                 AQE_Governors* governors, AQE_RequestContext* requestContext,
                 const Ids* avoidedJoins, AQE_I_QuerySubjectShortcutInfo* shortcutInfo,
                 bool connectivityOnly, const Ids& favouredSubjects);

    /// The shortcut-aware use, ConnectOverShortcuts. `avoidedJoins` may be null.
    AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                 const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                 AQE_Governors* governors, AQE_RequestContext* requestContext,
                 const Ids* avoidedJoins, AQE_I_QuerySubjectShortcutInfo* shortcutInfo);

    /// The plain use: Connect, without required or avoided joins and without shortcuts.
    AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                 const Ids& nodes, const Ids& joins, AQE_Governors* governors,
                 AQE_RequestContext* requestContext);

    /// The two-set use.
    AQE_JoinTree(amdi_gateway* gateway, const Ids& firstSet, const Ids& avoidedJoins,
                 const Ids& secondSet, const Ids& furtherAvoidedJoins, const Ids& favouredJoins,
                 const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                 std::vector<Ids>& resultPaths, int& resultWeight,
                 std::vector<EndPair>& resultPairs, AQE_Governors* governors,
                 AQE_RequestContext* requestContext, AQE_I_QuerySubjectShortcutInfo* shortcutInfo);

    /// The plain use with a stream to trace to.
    AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                 const Ids& nodes, const Ids& joins, std::ostream& traceStream,
                 AQE_Governors* governors, AQE_RequestContext* requestContext);

    AQE_JoinTree(const AQE_JoinTree&) = delete;
    AQE_JoinTree& operator=(const AQE_JoinTree&) = delete;
    virtual ~AQE_JoinTree();

    /// Returns whether the cheapest-trees search connected the subjects. False when something else
    /// did, also when the required joins alone connect them.
    [[nodiscard]] bool IsConnected() const { return mConnected; }

    /// Appends the joins of the tree graph.
    void GetTreeJoins(Ids& joins) const;

    /// Returns the weight of a path: in the full graph when the cheapest-trees algorithm was on,
    /// and -1 when that has no path; otherwise in the tree graph.
    [[nodiscard]] int GetPathWeight(const Ids& path) const;

    /// Replaces `joins` by the result of the connectivity-only use.
    void GetConnectingJoins(Ids& joins) const;

    /// Replaces `paths` by the candidate join paths of the cheapest-trees search; appends those
    /// that were grown instead.
    void GetJoinPaths(std::vector<Ids>& paths) const;

private:
    /// What a build is for.
    enum class EBuild
    {
        ConnectSubjects,
        ConnectOverShortcuts,
        TwoSets,
    };

    AQE_JoinTree(const qe::RefinerServices& services, const Ids& subjects,
                 const Ids& favouredJoins);

    void Build(const qe::JoinTreeRequest& request, EBuild build);
    void Connect(const qe::JoinTreeRequest& request, EBuild build, qe::CandidateGraph& candidates);
    void NumberNodes(const Ids& nodes);
    void GrowUnlessConnected(const qe::JoinEndsReader& endsReader);
    void CheapestTreesStep();
    void ShortestPathsBetween(const Ids& firstSet, const Ids& secondSet, std::vector<Ids>& paths,
                              int& minWeight);
    [[nodiscard]] qe::RefinerServices GetServices() const;

    [[maybe_unused]] std::ostream* mTraceStream;
    [[maybe_unused]] bool mTrace = false;
    amdi_gateway* mGateway;
    Ids mEntities;
    Ids mPreferredJoins;
    /// Null where nothing is built.
    AUT_RefPtr<AQE_I_UndirectedGraph> mGraph;
    std::map<amd_id, std::int32_t> mNodeIndex;
    AUT_RefPtr<AQE_I_UndirectedGraph> mTree;
    Ids mTreeJoins;
    Ids mMinimumSpanningTreeEntities;
    std::int32_t mTreeWeight = 0;
    AQE_I_QuerySubjectShortcutInfo* mShortcutInfo;
    bool mNewAlgo = false;
    std::vector<Ids> mJoinPaths;
    std::int32_t mJoinPathsWeight = -1;
    bool mConnected = false;
    AQE_Governors* mGovernors;
    AQE_RequestContext* mRequestContext;
    std::vector<EndPair> mEndpointPairs;
    bool mConnectivityOnly = false;
    Ids mConnectingJoins;
    std::set<amd_id> mFavouredSubjects;
    /// What mGraph belongs to.
    qe::CandidateLoan mLoan;
};

#endif
