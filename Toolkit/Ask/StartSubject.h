#ifndef TOOLKIT_ASK_STARTSUBJECT_H
#define TOOLKIT_ASK_STARTSUBJECT_H

#include "amd_id.h"

#include <string>

namespace qe::model {
class Model;
}

namespace qe::tool {

struct Answer;

/// Returns the subject that a statement along the answer's path is to begin with. Throws an
/// InputError about `place` unless the name stands for one subject, which the path touches.
[[nodiscard]] amd_id FindStart(const model::Model& model, const Answer& answer,
                               const std::string& place, const std::string& start);

} // namespace qe::tool

#endif
