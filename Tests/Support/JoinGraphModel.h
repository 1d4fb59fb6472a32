#ifndef TESTS_SUPPORT_JOINGRAPHMODEL_H
#define TESTS_SUPPORT_JOINGRAPHMODEL_H

#include "AQE_RequestContext.h"
#include "Tests/Support/FakeGateway.h"
#include "amd_id.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qe::test {

/// A model whose join graph can be read at a glance:
///
///     JoinGraphModel model("A-B B-C:5 x=A-C s>A s-C");
///
/// joins A to B and s to C at the weight that their kind gives them, B to C at 5 and A to C at the
/// usual weight under the name x; s is a shortcut to A. A join without a name is called as it is
/// written without its weight, a second one of that name gets "#2", a third one "#3". A node is
/// written with letters. Nodes are numbered in the order of their names, joins as they stand.
///
/// Weights of their own stand in the join cache of the model's request, which is asked before the
/// gateway.
class JoinGraphModel
{
public:
    using Ids = std::vector<amd_id>;

    explicit JoinGraphModel(std::string_view text);

    FakeGateway gateway;
    AQE_RequestContext context;

    [[nodiscard]] const Ids& GetNodes() const { return mNodes; }
    [[nodiscard]] const Ids& GetJoins() const { return mJoins; }

    /// Gives the ids of nodes or joins whose names stand in `names` with blanks between them.
    [[nodiscard]] Ids operator[](std::string_view names) const;

    /// Gives the names of ids, with blanks between them.
    [[nodiscard]] std::string Text(const Ids& ids) const;
    [[nodiscard]] std::vector<std::string> Texts(const std::vector<Ids>& lists) const;

private:
    void AddName(const std::string& name, const amd_id& id);
    void NumberNodes(std::string_view text);
    void AddJoin(std::string_view word);

    std::map<std::string, amd_id> mIds;
    std::map<amd_id, std::string> mNames;
    Ids mNodes;
    Ids mJoins;
};

} // namespace qe::test

#endif
