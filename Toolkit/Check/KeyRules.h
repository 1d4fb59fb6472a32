#ifndef TOOLKIT_CHECK_KEYRULES_H
#define TOOLKIT_CHECK_KEYRULES_H

namespace qe::tool {

class ModelGraph;
struct ModelJoin;

/// Returns whether the join compares items that do not tell the rows of an end apart which it needs
/// to: an end that counts as "one" has keys, and none of them lies within its items; or the join is
/// "many" at both ends for that reason. Nothing is known of subjects without keys. Takes the time
/// of reading the condition.
[[nodiscard]] bool MissesKeys(const ModelGraph& model, const ModelJoin& join);

} // namespace qe::tool

#endif
