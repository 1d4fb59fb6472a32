#include "StationSelector.h"

#include "AQE_I_JoinPathDescriptor.h"
#include "HostTables.h"
#include "Printing.h"

#include <algorithm>
#include <iostream>

namespace host {

std::uint32_t
StationSelector::SelectPath(const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors)
{
    std::vector<std::vector<amd_id>> paths;
    for (const auto& descriptor : descriptors) {
        descriptor->GetJoinPath(paths.emplace_back());
        std::cout << "  offered: " << ToLine(paths.back()) << " (rank " << descriptor->GetRank()
                  << ", weight " << descriptor->GetComputedWeight() << ")\n";
    }
    return mMisbehaves ? static_cast<std::uint32_t>(paths.size()) : SelectAlternative(paths);
}

std::uint32_t StationSelector::SelectAlternative(const std::vector<std::vector<amd_id>>& paths)
{
    const amd_id toStation = FindIds({"trip to station"}).front();
    for (std::uint32_t index = 0; index < paths.size(); ++index) {
        if (std::count(paths[index].begin(), paths[index].end(), toStation) != 0)
            return index;
    }
    return 0;
}

} // namespace host
