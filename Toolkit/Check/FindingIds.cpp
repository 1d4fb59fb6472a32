#include "Toolkit/Check/FindingIds.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Check/Rules.h"
#include "Toolkit/Text/DisplayText.h"

#include <set>

namespace qe::tool {

namespace {

std::string NameOf(const model::Model& model, const amd_id& id)
{
    return model::ToText(model.GetQualifiedName(id));
}

std::string PlaceName(const model::Model& model, const amd_id& id)
{
    const model::ObjectRecord* const record = model.Find(id);
    if (record == nullptr)
        return ToText(id);
    if (!model::IsJoinClass(id.classCode))
        return NameOf(model, id);
    return NameOf(model, id) + '(' + NameOf(model, record->left) + ',' +
           NameOf(model, record->right) + ')';
}

} // namespace

std::string MakeFindingId(const model::Model& model, std::string_view code, const Finding& finding)
{
    std::set<std::string> names;
    for (const amd_id& id : finding.place)
        names.insert(PlaceName(model, id));
    return std::string(code) + '/' + JoinTexts(names, {}, "/");
}

} // namespace qe::tool
