#ifndef TOOLKIT_CHECK_FINDINGIDS_H
#define TOOLKIT_CHECK_FINDINGIDS_H

#include <string>
#include <string_view>

namespace qe::model {
class Model;
}

namespace qe::tool {

struct Finding;

/// Returns "code/name/name": the code of the rule and the qualified names of the place, in their
/// order as texts. Behind the name of a join stand its ends, for joins may share a name. Nothing
/// else of the model, and no other finding, has a part in it.
[[nodiscard]] std::string MakeFindingId(const model::Model& model, std::string_view code,
                                        const Finding& finding);

} // namespace qe::tool

#endif
