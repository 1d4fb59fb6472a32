#include "Engine/Expression/ReferenceResolver.h"

namespace qe::expression {

ReferenceResolver::~ReferenceResolver() = default;

} // namespace qe::expression
