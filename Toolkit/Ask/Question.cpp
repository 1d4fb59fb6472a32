#include "Toolkit/Ask/Question.h"

namespace qe::tool {

std::string_view ToText(EOperation operation)
{
    switch (operation) {
    case EOperation::Path:
        return "path";
    case EOperation::BestPaths:
        return "best";
    case EOperation::JoinedSubjects:
        return "subjects";
    case EOperation::PathBetween:
        return "between";
    case EOperation::BestPathsBetween:
        return "best between";
    case EOperation::TreeJoins:
        return "tree";
    }
    return "";
}

} // namespace qe::tool
