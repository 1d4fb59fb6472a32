#ifndef TOOLKIT_ANSWERS_SQLCONDITION_H
#define TOOLKIT_ANSWERS_SQLCONDITION_H

#include "Engine/Model/ModelGateway.h"
#include "Toolkit/Answers/SqlTables.h"
#include "Toolkit/Ask/Answer.h"

#include <string>

namespace qe::tool {

/// Returns the join's condition in SQL, its references as columns of the tables. A reference to
/// what an end stands for means that end; where both ends stand for the same and only one of them
/// is named, the first references mean the left end, as CountLeftReferences counts them, and the
/// others the right one.
///
/// Throws InputError when there is no condition, or it cannot be read, or it refers to what is no
/// item or what the statement has no table for.
[[nodiscard]] std::string WriteSqlCondition(model::ModelGateway& gateway, const SqlTables& tables,
                                            const AnswerJoin& join);

} // namespace qe::tool

#endif
