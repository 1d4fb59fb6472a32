#ifndef SOURCE_JOINTREE_CANDIDATEGRAPH_H
#define SOURCE_JOINTREE_CANDIDATEGRAPH_H

#include "AQE_I_UndirectedGraph.h"
#include "Joins/JoinInfoReader.h"
#include "amd_id.h"

#include <vector>

class AQE_I_QuerySubjectShortcutInfo;

namespace qe {

/// The two graphs of a join tree, borrowed.
struct JoinGraphs
{
    /// The candidate nodes and joins.
    AQE_I_UndirectedGraph& full;
    /// What connects the subjects.
    AQE_I_UndirectedGraph& tree;
};

/// Loads the full graph of a join tree with the candidates and sets the weights that a request
/// asks for. The steps are taken in the order in which they stand here: a later weight wins.
class CandidateGraph
{
public:
    using Ids = std::vector<amd_id>;

    /// Borrows all of them. The shortcut information may be null.
    CandidateGraph(const JoinGraphs& graphs, const JoinEndsReader& endsReader,
                   AQE_I_QuerySubjectShortcutInfo* shortcutInfo);

    /// Adds the nodes in id order, and every join that can be read and has both ends among them.
    /// Initialises the shortcut information first.
    void Load(const Ids& nodes, const Ids& joins, const Ids& requiredJoins);

    /// Makes the joins as cheap as any, synthetic shortcut joins excepted.
    void Favour(const Ids& favouredJoins);

    /// Adds the joins to both graphs, as cheap as any. Appends their ends to `entities`, each once.
    void Require(const Ids& requiredJoins, Ids& entities);

    /// Adds the synthetic shortcut joins.
    void AddShortcutJoins();

    /// Makes the joins as long as the unreachable distance.
    void Avoid(const Ids& avoidedJoins);

private:
    void AddEntity(const amd_id& id, Ids& entities);

    JoinGraphs mGraphs;
    const JoinEndsReader& mEndsReader;
    AQE_I_QuerySubjectShortcutInfo* mShortcutInfo;
};

} // namespace qe

#endif
