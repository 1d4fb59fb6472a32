#include "Shortcuts/ShortcutGroupMembers.h"

#include "I18NString.h"
#include "IdClass.h"
#include "Joins/TypedLookup.h"
#include "amdi_gateway.h"
#include "amdi_shortcut.h"

#include <optional>
#include <utility>

namespace qe {

void CollectGroupMembers(amdi_gateway* gateway, const std::set<amd_id>& references,
                         std::vector<amd_id>& members)
{
    for (const amd_id& reference : references) {
        if (reference.classCode != IdClassShortcut)
            continue;
        const auto* const shortcut = LookUp<amdi_shortcut>(gateway, reference, IdClassShortcut);
        if (shortcut != nullptr && shortcut->GetShortcutKind() == 0)
            members.push_back(reference);
    }
}

amd_id ChooseRepresentative(amdi_gateway* gateway, const std::set<amd_id>& references)
{
    if (references.size() == 1)
        return *references.begin();
    amd_id best;
    std::optional<I18NString> bestName;
    for (const amd_id& reference : references) {
        if (reference.classCode != IdClassShortcut)
            return reference;
        const amdi_object* const object = gateway->GetObject(reference);
        if (object == nullptr)
            continue;
        I18NString name = object->GetName();
        if (!bestName || name < *bestName) {
            best = reference;
            bestName = std::move(name);
        }
    }
    return best.IsValid() ? best : *references.begin();
}

} // namespace qe
