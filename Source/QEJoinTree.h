#ifndef SOURCE_QEJOINTREE_H
#define SOURCE_QEJOINTREE_H

#include "AQE_I_UndirectedGraph.h"
#include "AUT_RefPtr.h"
#include "Joins/JoinEndsReader.h"
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

/// Decides which joins connect the query subjects of one request.
///
/// A join tree loads the candidate nodes and joins into the full graph, whose weights follow from
/// the kinds of the joins, and grows the tree graph in it until every query subject is connected.
/// With the setting "NewAlgo" (on by default) it takes all trees of least weight at once;
/// otherwise it merges the shortest paths between pairs of query subjects, cheapest first, and
/// then adds every other join between the query subjects it has reached, so that the alternatives
/// can be ranked.
///
/// All work is done in the constructor; the accessors read what it found. Pointers are borrowed
/// and must outlive the tree; governors, request context and shortcut information may be null.
/// When subjects or nodes are empty nothing is built, and the accessors tell of an empty tree.
/// Exceptions of the gateway pass through, and so does the error of the cross-product governor.
/// An ORVAssertError is raised when the pairwise algorithm has to close the tree at a join that it
/// cannot read, as synthetic shortcut joins are.
class AQE_JoinTree
{
public:
    using Ids = std::vector<amd_id>;
    using EndPair = std::pair<amd_id, amd_id>;

    /// Connects the subjects. With `connectivityOnly` the result is nothing but the joins of one
    /// cheapest tree; favoured, required and avoided joins and synthetic shortcut joins then do
    /// not count.
    AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                 const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                 AQE_Governors* governors, AQE_RequestContext* requestContext,
                 const Ids* avoidedJoins, AQE_I_QuerySubjectShortcutInfo* shortcutInfo,
                 bool connectivityOnly, const Ids& favouredSubjects);

    /// Connects the subjects by a tree of shortest paths that also passes over synthetic shortcut
    /// joins, whatever "NewAlgo" says.
    AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                 const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                 AQE_Governors* governors, AQE_RequestContext* requestContext,
                 const Ids* avoidedJoins, AQE_I_QuerySubjectShortcutInfo* shortcutInfo);

    /// Connects the subjects without required or avoided joins and without shortcuts.
    AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                 const Ids& nodes, const Ids& joins, AQE_Governors* governors,
                 AQE_RequestContext* requestContext);

    /// Finds all least-weight paths from a member of the first set to a member of the second that
    /// use no avoided join. Appends them to `resultPaths`, replaces `resultPairs` by their ends,
    /// and sets `resultWeight` to their weight, or to the unreachable distance when there is none.
    /// All three stay as they are when a set, the nodes or the joins are empty.
    AQE_JoinTree(amdi_gateway* gateway, const Ids& firstSet, const Ids& avoidedJoins,
                 const Ids& secondSet, const Ids& furtherAvoidedJoins, const Ids& favouredJoins,
                 const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                 std::vector<Ids>& resultPaths, int& resultWeight,
                 std::vector<EndPair>& resultPairs, AQE_Governors* governors,
                 AQE_RequestContext* requestContext, AQE_I_QuerySubjectShortcutInfo* shortcutInfo);

    /// Is the plain constructor with a stream to trace to.
    AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                 const Ids& nodes, const Ids& joins, std::ostream& traceStream,
                 AQE_Governors* governors, AQE_RequestContext* requestContext);

    AQE_JoinTree(const AQE_JoinTree&) = delete;
    AQE_JoinTree& operator=(const AQE_JoinTree&) = delete;
    virtual ~AQE_JoinTree();

    /// Tells whether the cheapest-trees search connected the subjects. False when another way
    /// did, also when the required joins alone connect them.
    [[nodiscard]] bool IsConnected() const { return mConnected; }

    /// Appends the joins of the tree graph.
    void GetTreeJoins(Ids& joins) const;

    /// Gives the weight of a path: in the full graph when the cheapest-trees algorithm was on, and
    /// -1 when that has no path; otherwise in the tree graph.
    [[nodiscard]] int GetPathWeight(const Ids& path) const;

    /// Replaces `joins` by the result of the connectivity-only use.
    void GetConnectingJoins(Ids& joins) const;

    /// Gives the candidate join paths. Those of the cheapest-trees search replace `paths`; those
    /// of the other ways are appended.
    void GetJoinPaths(std::vector<Ids>& paths) const;

private:
    using EShortcutUse = qe::JoinEndsReader::EShortcutUse;

    /// What the joins of a build are for.
    struct BuildLists
    {
        /// The subjects; in the two-set use the avoided joins.
        const Ids& subjects;
        const Ids& favouredJoins;
        const Ids& requiredJoins;
        const Ids& nodes;
        const Ids& joins;
        const Ids* avoidedJoins;
    };

    enum class EUse
    {
        ConnectSubjects,
        TwoSets,
    };

    AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                 AQE_Governors* governors, AQE_RequestContext* requestContext,
                 AQE_I_QuerySubjectShortcutInfo* shortcutInfo);

    void Build(const BuildLists& lists, EUse use);
    void BuildWithShortcuts(const BuildLists& lists);
    void LoadCandidateGraph(const BuildLists& lists, EShortcutUse shortcutUse);
    void NumberNodes(const Ids& nodes);
    void AddSubjects(const Ids& subjects);
    void FavourJoins(const Ids& favouredJoins, EShortcutUse shortcutUse);
    void RequireJoins(const Ids& requiredJoins, EShortcutUse shortcutUse);
    void AddEntity(const amd_id& id);
    void AddShortcutJoins();
    void AvoidJoins(const Ids& avoidedJoins);

    void GrowUnlessConnected(EShortcutUse shortcutUse);
    void GetShortestPathTree();
    void GetShortestPathTreeOfLibrary();
    void CollectSpanningTreeEntities();
    void AddTreeEdge(const amd_id& join, const qe::JoinEnds& ends, int weight);
    void CloseTree(EShortcutUse shortcutUse);
    void CheapestTreesStep();
    void ShortestPathsBetween(const Ids& firstSet, const Ids& secondSet, std::vector<Ids>& paths,
                              int& minWeight);

    [[nodiscard]] qe::JoinEndsReader GetEndsReader() const;

    [[maybe_unused]] std::ostream* mTraceStream;
    [[maybe_unused]] bool mTrace = false;
    amdi_gateway* mGateway;
    Ids mEntities;
    Ids mPreferredJoins;
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
};

#endif
