#ifndef SOURCE_QUERYSUBJECTSHORTCUTINFO_H
#define SOURCE_QUERYSUBJECTSHORTCUTINFO_H

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "Shortcuts/ShortcutGroups.h"
#include "Shortcuts/ShortcutReferences.h"
#include "amd_id.h"

#include <iosfwd>
#include <map>
#include <vector>

/// The shortcut information: gathers what refers to what, forms the groups by one of two rules,
/// and keeps the groups and their synthetic joins.
class AQE_QuerySubjectShortcutInfo : public AQE_I_QuerySubjectShortcutInfo
{
public:
    using QEjoinInfo = AQE_I_Refiner::QEjoinInfo;

    AQE_QuerySubjectShortcutInfo(amdi_gateway* gateway, AQE_Governors* governors,
                                 AQE_RequestContext* context);
    ~AQE_QuerySubjectShortcutInfo() override;

    void Initialize(const std::vector<amd_id>& querySubjects, const std::vector<amd_id>& joins,
                    const std::vector<amd_id>& requiredJoins) override;
    [[nodiscard]] const std::vector<QEjoinInfo>& GetShortcutJoins() override;
    [[nodiscard]] bool GetJoinInfo(const amd_id& joinId, QEjoinInfo& info) override;
    [[nodiscard]] amd_id GetGroupKey(const amd_id& id) override;
    void Dump(std::ostream& out) override;

private:
    void RecordJoins(const std::vector<amd_id>& joins);

    void BuildGroups();
    void WriteLog();

    qe::ShortcutGroups mGroups;
    /// What was answered before all groups were there.
    std::map<amd_id, amd_id> mGroupKeyCache;
    /// Set when a build starts, so that one that fails is not tried again.
    bool mBuilt = false;
    /// What the groups are made from; empty after the build.
    qe::ShortcutReferences mReferences;
    amdi_gateway* mGateway;
    AQE_Governors* mGovernors;
    AQE_RequestContext* mRequestContext;
};

#endif
