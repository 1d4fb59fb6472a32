#ifndef ENGINE_EXPRESSION_REFERENCERESOLVER_H
#define ENGINE_EXPRESSION_REFERENCERESOLVER_H

#include "I18NString.h"
#include "QEENGINE_EXPORT.h"
#include "amd_id.h"

#include <optional>
#include <vector>

namespace qe::expression {

/// What the names of a reference lead to.
struct ResolvedReference
{
    /// The object itself, usually a query item.
    amd_id referencedId;
    /// The query subject or shortcut named on the path to it. When it is a shortcut,
    /// `referencedId` is still the item of the query subject that the shortcut stands for.
    amd_id querySubjectId;
};

/// Finds the objects that expressions name. A gateway that can look up names implements it beside
/// amdi_gateway; AQE_Expression::Create finds it there with a dynamic_cast.
class QEENGINE_EXPORT ReferenceResolver
{
public:
    virtual ~ReferenceResolver();

    /// Returns what `names` (qualifier, query subject or shortcut, item; without brackets, at least
    /// two) lead to, or nothing when some name on the path is not known. Names are compared code
    /// unit by code unit. Must not throw for names that are not known.
    [[nodiscard]] virtual std::optional<ResolvedReference>
    ResolveReference(const std::vector<I18NString>& names) = 0;
};

} // namespace qe::expression

#endif
