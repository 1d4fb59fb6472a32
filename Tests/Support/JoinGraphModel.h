#ifndef TESTS_SUPPORT_JOINGRAPHMODEL_H
#define TESTS_SUPPORT_JOINGRAPHMODEL_H

#include "AQE_RequestContext.h"
#include "Tests/Support/ModelText.h"

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
/// written without its weight. A node is written with letters. Subjects and shortcuts are numbered
/// in the order of their names, joins as they stand.
///
/// Weights of their own stand in the join cache of the model's request, which is asked before the
/// gateway.
class JoinGraphModel : public ModelText
{
public:
    using Ids = std::vector<amd_id>;

    explicit JoinGraphModel(std::string_view text);

    AQE_RequestContext context;

    /// Returns the ids of nodes or joins whose names stand in `names` with spaces between them.
    [[nodiscard]] Ids operator[](std::string_view names) const;

    /// Returns the names of ids, with spaces between them.
    [[nodiscard]] std::string Text(const Ids& ids) const;
    [[nodiscard]] std::vector<std::string> Texts(const std::vector<Ids>& lists) const;
};

} // namespace qe::test

#endif
