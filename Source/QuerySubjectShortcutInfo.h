#ifndef SOURCE_QUERYSUBJECTSHORTCUTINFO_H
#define SOURCE_QUERYSUBJECTSHORTCUTINFO_H

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "Shortcuts/ShortcutReferences.h"
#include "amd_id.h"

#include <iosfwd>
#include <map>
#include <set>
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
    using Containers = qe::ShortcutReferences::Containers;

    void RecordJoins(const std::vector<amd_id>& joins);

    void BuildGroupsByTarget();
    void GroupByTarget(const amd_id& target, const Containers& containers);

    void BuildGroupsByContainer();
    void GroupByContainer(const Containers& containers);

    void JoinPairwise(const std::vector<amd_id>& ends);
    void AddShortcutJoin(const amd_id& left, const amd_id& right);
    void WriteLog();

    std::vector<QEjoinInfo> mShortcutJoins;
    /// The members of each group by its key, which is no member itself.
    std::map<amd_id, std::set<amd_id>> mGroups;
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
