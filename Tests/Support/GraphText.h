#ifndef TESTS_SUPPORT_GRAPHTEXT_H
#define TESTS_SUPPORT_GRAPHTEXT_H

#include "AQE_I_UndirectedGraph.h"
#include "AUT_RefPtr.h"
#include "amd_id.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qe::test {

/// A graph written as text, such as "orders-customer:17 customer-region:17 island": edges with
/// their weights, and nodes that stand alone.
///
/// Nodes and edges get ascending ids in the order of their first appearance. An edge is called by
/// its ends; the second of the same name is "a-b#2", and so on.
class GraphText
{
public:
    explicit GraphText(std::string_view text);

    [[nodiscard]] AQE_I_UndirectedGraph& Get() const { return *mGraph; }

    /// Returns the id behind a name; one that the graph does not have for an unknown name.
    [[nodiscard]] amd_id Id(const std::string& name) const;
    [[nodiscard]] std::vector<amd_id> Ids(std::string_view names) const;

    /// Writes ids as names, separated by blanks.
    [[nodiscard]] std::string Write(const std::vector<amd_id>& ids) const;
    [[nodiscard]] std::vector<std::string> Write(const std::vector<std::vector<amd_id>>& ids) const;

private:
    amd_id NameNode(const std::string& name);
    amd_id NameEdge(std::string name);

    AUT_RefPtr<AQE_I_UndirectedGraph> mGraph = AQE_I_UndirectedGraph::Create();
    std::map<std::string, amd_id> mIds;
    std::map<amd_id, std::string> mNames;
};

} // namespace qe::test

#endif
