#ifndef INCLUDE_AQE_I_REFINER_H
#define INCLUDE_AQE_I_REFINER_H

#include "AUT_RefPtr.h"
#include "BMT_I_Association.h"
#include "I18NString.h"
#include "QEREFINER_EXPORT.h"
#include "amd_id.h"

#include <utility>
#include <vector>

class AQE_I_PathSelector;
class AQE_I_QuerySubjectShortcutInfo;
class AQE_I_Refiner;
class AQE_RequestContext;
class I18NLocale;
class amdi_gateway;
struct AQE_Governors;

extern template class QEREFINER_EXPORT AUT_RefPtr<AQE_I_Refiner>;

/// Finds the joins that connect the query subjects of a request.
///
/// A refiner serves one request on one thread. It borrows everything it is given; the caller keeps
/// those objects alive as long as operations use them. A join path is a list of join ids in the
/// order in which they connect. The lists of an operation mean:
/// - `querySubjects`: the query subjects to connect;
/// - `favouredJoins`, `requiredJoins`, `avoidedJoins`: joins that are made cheap, that must be
///   used, that must not be used;
/// - `nodes`, `joins`: the query subjects, shortcuts and joins that may be used at all;
/// - `favouredSubjects`: query subjects whose joins are made cheaper.
///
/// In a request that has a join cache each join is read from the gateway once, and an operation
/// with the nodes and joins of the one before it goes on with the join graph of that one;
/// otherwise, and always in GetJoinTreeJoins, it builds its own. How long the search for trees
/// takes is up to the graph (AQE_I_UndirectedGraph), and the paths between two sets take one search
/// for each pair.
///
/// Exceptions of the gateway, of the selector and of the engine's services pass through.
class QEREFINER_EXPORT AQE_I_Refiner
{
public:
    /// What kind of edge a join is in the join graph. The kind alone fixes the weight.
    enum EEdgeType : int
    {
        /// A relationship of the second kind, and a join that must be taken first.
        EdgeTypeRelationship136 = 0,
        /// A synthetic join between a shortcut and what it stands for.
        EdgeTypeShortcut = 1,
        /// A join with one end among the favoured query subjects.
        EdgeTypeOneEndInSet = 2,
        /// A join with both ends among the favoured query subjects.
        EdgeTypeBothEndsInSet = 3,
        /// A join of the model or of the query.
        EdgeTypeJoin = 4,
        /// No edge: the distance of what cannot be reached.
        EdgeTypeNone = 5,
    };

    /// One join as the join graph sees it.
    struct QEjoinInfo
    {
        int weight = 0;
        amd_id joinId;
        I18NString name;
        /// The first end: a query subject or a shortcut.
        amd_id leftQuerySubject;
        /// The second end: a query subject or a shortcut.
        amd_id rightQuerySubject;
        /// The join condition.
        I18NString expression;
        BMT_I_Association::CardinalityRange leftCardinality;
        BMT_I_Association::CardinalityRange rightCardinality;
    };

    /// One filter.
    struct QEFilterInfo
    {
        amd_id filterId;
        I18NString name;
        /// The filter condition.
        I18NString expression;
    };

    virtual ~AQE_I_Refiner();

    /// Makes a refiner. Nothing is checked: any pointer may be null; without a gateway only joins
    /// in the join cache can be read, without a selector the best-ranked path is taken, without
    /// governors nothing is forbidden, without a context nothing is cached. `useFactTableCount`
    /// ranks paths of equal weight by how many fact tables they touch, `useStraightestPath` then by
    /// how little they branch (in ComputeJoinPath only).
    [[nodiscard]] static AUT_RefPtr<AQE_I_Refiner>
    Create(amdi_gateway* gateway, AQE_I_PathSelector* pathSelector, AQE_Governors* governors,
           AQE_RequestContext* requestContext, bool useFactTableCount, bool useStraightestPath);

    /// Reads a join of class 102, 110, 136 or 300005 into `info`, from the request's join cache
    /// when it is there, otherwise from the gateway, and then keeps it in the cache. Returns false
    /// when the join cannot be read; `info` may then be partly filled. `context` may be null.
    /// A chain of relationship shortcuts has to end: reading one that is cyclic never ends.
    [[nodiscard]] static bool GetJoinInfo(amdi_gateway* gateway, AQE_RequestContext* context,
                                          const amd_id& joinId, QEjoinInfo& info);

    /// Returns the weight of a kind of edge, which depends on the setting "FFJoins". A number that
    /// is no kind raises an ORVAssertError.
    [[nodiscard]] static int GetEdgeWeightForType(EEdgeType type);

    /// Returns the user setting "FFJoins" of section "General Options", 3 by default. It is read
    /// once in the life of the process.
    [[nodiscard]] static int GetFFJoinsMode();

    /// Reads a filter of class 114 or 300020 into `info`. Returns false when there is no such
    /// filter; of a filter that is missing, `info` then holds the id. `locale` is not used.
    [[nodiscard]] static bool GetFilterInfo(amdi_gateway* gateway, const amd_id& filterId,
                                            QEFilterInfo& info, const I18NLocale& locale);

    /// Follows a chain of shortcuts to its query subject, whose existence is not checked. Returns
    /// the empty id when the chain breaks, is cyclic or ends elsewhere. The shortcuts
    /// passed and their parents are appended to the lists that are not null, also on failure.
    [[nodiscard]] static amd_id GetRefQuerySubject(amdi_gateway* gateway, const amd_id& id,
                                                   std::vector<amd_id>* shortcuts,
                                                   std::vector<amd_id>* shortcutParents);

    /// Appends the chosen join path to `joinPath`; nothing when there is none, or with fewer than
    /// two query subjects. A request that was answered before (same query subjects, favoured and
    /// required joins together) is answered from the request's join cache, which then replaces
    /// the content of `joinPath`.
    ///
    /// Raises an HBNException (severity 1, code 1) when the selector's choice is out of range.
    virtual void ComputeJoinPath(const std::vector<amd_id>& querySubjects,
                                 const std::vector<amd_id>& favouredJoins,
                                 const std::vector<amd_id>& requiredJoins,
                                 const std::vector<amd_id>& nodes, const std::vector<amd_id>& joins,
                                 const std::vector<amd_id>& favouredSubjects,
                                 std::vector<amd_id>& joinPath) = 0;

    /// Appends, in id order and each once, the given query subjects and the ends of the
    /// relationships and relationship shortcuts that would connect them. Joins of other kinds
    /// bring no ends.
    virtual void GetJoinedQuerySubjects(const std::vector<amd_id>& querySubjects,
                                        const std::vector<amd_id>& nodes,
                                        const std::vector<amd_id>& joins,
                                        std::vector<amd_id>& joinedQuerySubjects) = 0;

    /// Chooses one least-weight path from a member of the first set to a member of the second.
    /// Replaces `joinPath` by it and `resultWeight` by its weight (-1 when nothing was searched,
    /// 8888 when every path is barred), and appends the two query subjects at its ends to
    /// `endPair`. The joins of both avoided lists are kept out.
    ///
    /// Raises an HBNException (severity 1, code 1) when the selector's choice is out of range.
    virtual void ComputeJoinPathBetween(
        const std::vector<amd_id>& firstSet, const std::vector<amd_id>& avoidedJoins,
        const std::vector<amd_id>& secondSet, const std::vector<amd_id>& furtherAvoidedJoins,
        const std::vector<amd_id>& favouredJoins, const std::vector<amd_id>& requiredJoins,
        const std::vector<amd_id>& nodes, const std::vector<amd_id>& joins,
        std::vector<amd_id>& joinPath, int& resultWeight, std::vector<amd_id>& endPair) = 0;

    /// Appends the best paths to `bestPaths`: least weight, then fewest fact tables. In mode 3 of
    /// "FFJoins" `bestPaths` is replaced by all candidates instead. Returns false when there is no
    /// path, and in mode 3 whether the cheapest-trees search connected the query subjects; true
    /// with fewer than two query subjects. `avoidedJoins` counts only when it is not empty.
    virtual bool ComputeBestJoinPaths(
        const std::vector<amd_id>& querySubjects, const std::vector<amd_id>& favouredJoins,
        const std::vector<amd_id>& requiredJoins, const std::vector<amd_id>& nodes,
        const std::vector<amd_id>& joins, std::vector<std::vector<amd_id>>& bestPaths,
        const std::vector<amd_id>& avoidedJoins, const std::vector<amd_id>& favouredSubjects) = 0;

    /// Replaces `bestPaths` by the best least-weight paths between the two sets and `resultWeight`
    /// by their weight, as ComputeJoinPathBetween does, and appends one (first, second) pair of
    /// end subjects for each of them to `endPairs`. With the setting "NewAlgo" every join counts -1
    /// when the least-weight paths are compared, so that those with the most joins are the best.
    virtual void ComputeBestJoinPathsBetween(
        const std::vector<amd_id>& firstSet, const std::vector<amd_id>& avoidedJoins,
        const std::vector<amd_id>& secondSet, const std::vector<amd_id>& furtherAvoidedJoins,
        const std::vector<amd_id>& favouredJoins, const std::vector<amd_id>& requiredJoins,
        const std::vector<amd_id>& nodes, const std::vector<amd_id>& joins,
        std::vector<std::vector<amd_id>>& bestPaths, int& resultWeight,
        std::vector<std::pair<amd_id, amd_id>>& endPairs) = 0;

    /// Sets the request's shortcut information, which is borrowed until it is replaced; null
    /// takes it away.
    virtual void SetShortcutInfo(AQE_I_QuerySubjectShortcutInfo* shortcutInfo) = 0;

    /// Appends the joins of a tree of least-weight paths over the query subjects, shortcuts
    /// included, built from the given gateway, governors and context instead of the refiner's
    /// own. `avoidedJoins` may be null. Returns whether `treeJoins` then holds any join.
    virtual bool GetJoinTreeJoins(amdi_gateway* gateway, const std::vector<amd_id>& querySubjects,
                                  const std::vector<amd_id>& favouredJoins,
                                  const std::vector<amd_id>& requiredJoins,
                                  const std::vector<amd_id>& nodes,
                                  const std::vector<amd_id>& joins, AQE_Governors* governors,
                                  AQE_RequestContext* requestContext,
                                  const std::vector<amd_id>* avoidedJoins,
                                  std::vector<amd_id>& treeJoins) = 0;
};

#endif
