#include "Shortcuts/ShortcutReferences.h"

#include "AQE_I_Refiner.h"
#include "IdClass.h"
#include "amdi_gateway.h"
#include "amdi_object.h"

#include <cstddef>
#include <vector>

namespace qe {
namespace {

bool IsShortcut(const amd_id& id)
{
    return id.classCode == IdClassShortcut;
}

} // namespace

void ShortcutReferences::RegisterShortcut(amdi_gateway* gateway, const amd_id& shortcut)
{
    std::vector<amd_id> chain;
    std::vector<amd_id> chainParents;
    const amd_id target =
        AQE_I_Refiner::GetRefQuerySubject(gateway, shortcut, &chain, &chainParents);
    if (!target.IsValid())
        return;
    const amdi_object* const targetObject = gateway->GetObject(target);
    if (targetObject == nullptr)
        return;
    const amd_id targetParent = targetObject->GetParentId();
    mShortcutRecords[shortcut] = {chainParents.front(), target, targetParent};

    ReferencesByParent& parents = mReferencesByTarget[target];
    parents[targetParent].insert(target);
    for (std::size_t i = 0; i < chain.size(); ++i)
        parents[chainParents[i]].insert(chain[i]);
}

void ShortcutReferences::RecordJoinedReferences(const amd_id& left, const amd_id& right)
{
    if (left == right || (!IsShortcut(left) && !IsShortcut(right)))
        return;
    // Shortcuts that were never registered have an empty record, whose target no real end equals.
    const amd_id leftTarget = IsShortcut(left) ? mShortcutRecords[left].target : left;
    const amd_id rightTarget = IsShortcut(right) ? mShortcutRecords[right].target : right;
    if (leftTarget != rightTarget)
        return;
    // An end that is no shortcut is the target itself, whose parent the other end knows.
    const amd_id leftParent = IsShortcut(left) ? mShortcutRecords[left].shortcutParent
                                               : mShortcutRecords[right].targetParent;
    const amd_id rightParent = IsShortcut(right) ? mShortcutRecords[right].shortcutParent
                                                 : mShortcutRecords[left].targetParent;
    if (leftParent == rightParent)
        return;
    mJoinedReferences[leftTarget].insert({left, right});
}

void ShortcutReferences::ConsolidateJoinedReferences()
{
    for (auto& [target, parents] : mReferencesByTarget) {
        const auto joined = mJoinedReferences.find(target);
        if (joined != mJoinedReferences.end())
            ConsolidateJoinedReferences(parents, joined->second);
    }
}

void ShortcutReferences::ConsolidateJoinedReferences(ReferencesByParent& parents,
                                                     const std::set<amd_id>& joined)
{
    const amd_id best = ChooseParent(joined);
    if (!best.IsValid() || parents.find(best) == parents.end())
        return;
    for (const amd_id& reference : joined) {
        if (!IsShortcut(reference))
            continue;
        const amd_id parent = mShortcutRecords[reference].shortcutParent;
        const auto home = parents.find(parent);
        if (parent == best || home == parents.end() || home->second.erase(reference) == 0)
            continue;
        parents[best].insert(reference);
    }
    std::erase_if(parents, [](const auto& entry) { return entry.second.empty(); });
}

amd_id ShortcutReferences::ChooseParent(const std::set<amd_id>& joined)
{
    amd_id best;
    amd_id targetParent;
    amd_id joinedTarget;
    for (const amd_id& reference : joined) {
        if (!IsShortcut(reference)) {
            joinedTarget = reference;
            continue;
        }
        const ShortcutRecord& record = mShortcutRecords[reference];
        if (!best.IsValid() || record.shortcutParent < best)
            best = record.shortcutParent;
        targetParent = record.targetParent;
    }
    return joinedTarget.IsValid() ? targetParent : best;
}

void ShortcutReferences::Clear() noexcept
{
    mReferencesByTarget.clear();
    mShortcutRecords.clear();
    mJoinedReferences.clear();
}

} // namespace qe
