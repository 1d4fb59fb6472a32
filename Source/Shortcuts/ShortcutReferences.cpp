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
    const amd_id targetContainer = targetObject->GetParentId();
    mShortcutRecords[shortcut] = {chainParents.front(), target, targetContainer};

    Containers& containers = mReferencesByTarget[target];
    containers[targetContainer].insert(target);
    for (std::size_t i = 0; i < chain.size(); ++i)
        containers[chainParents[i]].insert(chain[i]);
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
    // An end that is no shortcut is the target itself, whose container the other end knows.
    const amd_id leftContainer = IsShortcut(left) ? mShortcutRecords[left].shortcutContainer
                                                  : mShortcutRecords[right].targetContainer;
    const amd_id rightContainer = IsShortcut(right) ? mShortcutRecords[right].shortcutContainer
                                                    : mShortcutRecords[left].targetContainer;
    if (leftContainer == rightContainer)
        return;
    mJoinedReferences[leftTarget].insert({left, right});
}

void ShortcutReferences::ConsolidateJoinedReferences()
{
    for (auto& [target, containers] : mReferencesByTarget) {
        const auto joined = mJoinedReferences.find(target);
        if (joined != mJoinedReferences.end())
            ConsolidateJoinedReferences(containers, joined->second);
    }
}

void ShortcutReferences::ConsolidateJoinedReferences(Containers& containers,
                                                     const std::set<amd_id>& joined)
{
    const amd_id best = ChooseContainer(joined);
    if (!best.IsValid() || containers.find(best) == containers.end())
        return;
    for (const amd_id& reference : joined) {
        if (!IsShortcut(reference))
            continue;
        const amd_id container = mShortcutRecords[reference].shortcutContainer;
        const auto home = containers.find(container);
        if (container == best || home == containers.end() || home->second.erase(reference) == 0)
            continue;
        containers[best].insert(reference);
    }
    std::erase_if(containers, [](const auto& entry) { return entry.second.empty(); });
}

amd_id ShortcutReferences::ChooseContainer(const std::set<amd_id>& joined)
{
    amd_id best;
    amd_id targetContainer;
    amd_id joinedTarget;
    for (const amd_id& reference : joined) {
        if (!IsShortcut(reference)) {
            joinedTarget = reference;
            continue;
        }
        const ShortcutRecord& record = mShortcutRecords[reference];
        if (!best.IsValid() || record.shortcutContainer < best)
            best = record.shortcutContainer;
        targetContainer = record.targetContainer;
    }
    return joinedTarget.IsValid() ? targetContainer : best;
}

void ShortcutReferences::Clear() noexcept
{
    mReferencesByTarget.clear();
    mShortcutRecords.clear();
    mJoinedReferences.clear();
}

} // namespace qe
