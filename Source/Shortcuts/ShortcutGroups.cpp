#include "Shortcuts/ShortcutGroups.h"

#include "I18NString.h"
#include "IdClass.h"
#include "Joins/GatewayCalls.h"
#include "amdi_gateway.h"
#include "amdi_object.h"
#include "amdi_shortcut.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <utility>

namespace qe {

namespace {

/// The domain of the ids of synthetic joins.
constexpr std::int32_t kSyntheticDomain = 100;

/// Appends the shortcuts of the ordinary kind among the references of one parent, in id order.
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

/// Returns the reference that stands for all of its parent: the only one, else the first that is no
/// shortcut (in practice the target), else the shortcut with the least name, the least id among
/// equal names. Shortcuts without an object have no name and come last. `references` is not empty.
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

/// Returns "name(class:number)", without a name when there is no object.
I18NString Describe(amdi_gateway* gateway, const amd_id& id)
{
    const amdi_object* const object = gateway == nullptr ? nullptr : gateway->GetObject(id);
    const I18NString name = object == nullptr ? I18NString() : object->GetName();
    return name + "(" + ToText(id) + ")";
}

void WriteLine(std::ostream& out, const I18NString& line)
{
    out << line.c_str() << std::endl;
}

} // namespace

void ShortcutGroups::GroupByTarget(const ShortcutReferences& references)
{
    for (const auto& [target, parents] : references.GetByTarget()) {
        std::vector<amd_id> members;
        for (const auto& [parent, ofParent] : parents)
            CollectGroupMembers(mGateway, ofParent, members);
        AddGroup(target, members);
    }
    Complete();
}

void ShortcutGroups::GroupByParent(const ShortcutReferences& references)
{
    for (const auto& [target, parents] : references.GetByTarget()) {
        if (parents.size() < 2)
            continue;
        std::vector<amd_id> members;
        for (const auto& [parent, ofParent] : parents)
            members.push_back(ChooseRepresentative(mGateway, ofParent));
        std::sort(members.begin(), members.end());
        const amd_id key = members.front();
        members.erase(members.begin());
        AddGroup(key, members);
    }
    Complete();
}

void ShortcutGroups::Complete()
{
    std::sort(mKeysOfMembers.begin(), mKeysOfMembers.end());
    mIsComplete = true;
}

void ShortcutGroups::AddGroup(const amd_id& key, const std::vector<amd_id>& members)
{
    for (const amd_id& member : members) {
        mGroups[key].insert(member);
        mKeysOfMembers.emplace_back(member, key);
        AddJoin(key, member);
    }
    for (std::size_t i = 0; i < members.size(); ++i) {
        for (std::size_t j = i + 1; j < members.size(); ++j)
            AddJoin(members[i], members[j]);
    }
}

void ShortcutGroups::AddJoin(const amd_id& left, const amd_id& right)
{
    constexpr auto kOne = BMT_I_Association::CardinalityOne;
    QEjoinInfo info;
    info.weight = AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeShortcut);
    info.joinId = {kSyntheticDomain, IdClassShortcutJoin, static_cast<std::int32_t>(mJoins.size())};
    info.leftQuerySubject = left;
    info.rightQuerySubject = right;
    info.leftCardinality = {kOne, kOne};
    info.rightCardinality = {kOne, kOne};
    mJoins.push_back(info);
}

amd_id ShortcutGroups::FindKey(const amd_id& shortcut) const
{
    if (mIsComplete) {
        const auto entry = std::ranges::lower_bound(mKeysOfMembers, shortcut, {},
                                                    &std::pair<amd_id, amd_id>::first);
        const bool isMember = entry != mKeysOfMembers.end() && entry->first == shortcut;
        return isMember ? entry->second : shortcut;
    }
    // What the host raised has ended a grouping halfway, or it asks in the middle of one.
    const auto group = std::ranges::find_if(
        mGroups, [&shortcut](const auto& entry) { return entry.second.count(shortcut) != 0; });
    return group == mGroups.end() ? shortcut : group->first;
}

void ShortcutGroups::Dump(std::ostream& out) const
{
    out << "Shortcut groups:" << std::endl;
    for (const auto& [key, members] : mGroups) {
        I18NString line = Describe(mGateway, key) + " <-- ";
        for (const amd_id& member : members)
            line += Describe(mGateway, member) + ";";
        WriteLine(out, line);
    }
    out << "Joins for the shortcuts:" << std::endl;
    for (const QEjoinInfo& join : mJoins)
        WriteLine(out, Describe(mGateway, join.leftQuerySubject) + " <1:1--1:1> " +
                           Describe(mGateway, join.rightQuerySubject));
}

} // namespace qe
