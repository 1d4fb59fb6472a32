#include <AQE_Compatibility.h>
#include <AQE_I_Refiner.h>
#include <AQE_JoinCache.h>
#include <I18NString.h>

#include <iostream>
#include <vector>

/// Uses a class, a static operation and a plain function of the refiner, and a type of the engine.
int main()
{
    const std::vector<amd_id> subjects{amd_id(0, 100, 1), amd_id(0, 100, 2)};
    const std::vector<amd_id> joins{amd_id(0, 102, 3)};
    AQE_JoinCache cache;
    cache.CacheJoinPath(subjects, {}, {}, joins);
    std::vector<amd_id> path;
    const bool found = cache.GetJoinPath(subjects, {}, {}, path);

    AQE_I_Refiner::QEjoinInfo info;
    info.name = I18NString("orders to customers");
    cache.CacheJoinInfo(joins.front(), info);
    AQE_I_Refiner::QEjoinInfo read;
    const bool same = cache.GetJoinInfo(joins.front(), read) && read.name == info.name;

    const int weight = AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeJoin);
    if (!found || path != joins || !same || weight <= 0 || AQE_IsObjectConnected()) {
        std::cerr << "the installed library answers wrongly\n";
        return 1;
    }
    std::cout << "a join weighs " << weight << '\n';
    return 0;
}
