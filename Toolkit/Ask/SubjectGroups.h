#ifndef TOOLKIT_ASK_SUBJECTGROUPS_H
#define TOOLKIT_ASK_SUBJECTGROUPS_H

#include "Toolkit/Ask/Answer.h"

#include <map>
#include <vector>

namespace qe::tool {

/// Puts subjects that joins connect into one group. Adding a join takes almost constant time
/// beside the look-up of its ends.
class SubjectGroups
{
public:
    void AddJoin(const amd_id& left, const amd_id& right);

    /// Splits the subjects by group: groups in the order of their first subjects, subjects in the
    /// order given.
    [[nodiscard]] std::vector<std::vector<amd_id>> Split(const std::vector<amd_id>& subjects);

private:
    [[nodiscard]] amd_id FindRoot(const amd_id& subject);

    std::map<amd_id, amd_id> mParents;
};

/// Returns the groups with one subject of each, when there are several.
[[nodiscard]] Separation DescribeSeparation(std::vector<std::vector<amd_id>> groups);

} // namespace qe::tool

#endif
