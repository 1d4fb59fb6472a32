#ifndef TOOLKIT_ASK_SUBJECTNAME_H
#define TOOLKIT_ASK_SUBJECTNAME_H

#include "amd_id.h"

#include <string>
#include <vector>

namespace qe::model {
class Model;
}

namespace qe::tool {

/// Gives the name of a subject of the model, with its holders when others have the same name.
[[nodiscard]] std::string SubjectName(const model::Model& model, const amd_id& subject);

/// Gives such a name for each subject.
[[nodiscard]] std::vector<std::string> SubjectNames(const model::Model& model,
                                                    const std::vector<amd_id>& subjects);

} // namespace qe::tool

#endif
