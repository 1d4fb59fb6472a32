#ifndef TESTS_SOURCE_REFERENCE_TREESERVICES_H
#define TESTS_SOURCE_REFERENCE_TREESERVICES_H

#include "AQE_Governors.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "AQE_RequestContext.h"
#include "I18NString.h"
#include "amdi_gateway.h"

#include <optional>
#include <vector>

namespace qe::test {

using Ids = std::vector<amd_id>;

[[nodiscard]] bool Contains(const Ids& ids, const amd_id& id);
void AppendOnce(Ids& ids, const amd_id& id);

/// Returns a user setting as it is now.
[[nodiscard]] int ReadSetting(const char* section, const char* key, int defaultValue);

/// What a join tree borrows, all of which may be null but the gateway, and what it asks of it.
struct TreeServices
{
    amdi_gateway* gateway = nullptr;
    AQE_Governors* governors = nullptr;
    AQE_RequestContext* context = nullptr;
    AQE_I_QuerySubjectShortcutInfo* shortcutInfo = nullptr;

    enum class EShortcutJoins
    {
        Ignored,
        Read,
    };

    [[nodiscard]] std::optional<AQE_I_Refiner::QEjoinInfo> ReadJoin(const amd_id& join,
                                                                    EShortcutJoins which) const;

    /// Asks the governor about subjects that lie apart when a tree grows by shortest paths.
    void CheckCrossProduct(const I18NString& names, int line) const;
    /// Asks it after a search for the cheapest trees, which warns where the other is silent.
    void CheckCheapestTrees(const Ids& subjects) const;

    [[nodiscard]] I18NString NameOf(const amd_id& id) const;
    [[nodiscard]] I18NString DisplayNamesOf(const Ids& ids) const;

private:
    void Warn() const;
    void RaiseCrossProduct(const I18NString& names, int line) const;
    [[nodiscard]] I18NString GetUserClasses() const;
};

} // namespace qe::test

#endif
