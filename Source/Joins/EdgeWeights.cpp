#include "AQE_I_Refiner.h"

#include "AUT_I_UserConfiguration.h"
#include "ORVAssertError.h"

#include <array>
#include <atomic>

namespace {

constexpr int kAllCandidatesMode = 3;

/// One weight for each edge type, and the line that an unknown type is reported from.
struct WeightTable
{
    std::array<int, 6> weights;
    int failureLine;
};

constexpr WeightTable kDefaultWeights{{2, 2, 7, 3, 17, 8888}, 582};
constexpr WeightTable kOtherWeights{{1, 1, 5, 2, 11, 8888}, 609};

/// The setting "FFJoins" as it was when it was first asked for. Two first callers at once may
/// both read it, with the same result.
struct CachedMode
{
    std::atomic<bool> notYetRead{true};
    std::atomic<int> mode{0};
};

CachedMode cachedMode;

} // namespace

int AQE_I_Refiner::GetFFJoinsMode()
{
    if (cachedMode.notYetRead) {
        const auto configuration = AUT_I_UserConfiguration::Create(RootKeyUser);
        cachedMode.mode = configuration->GetInt("General Options", "FFJoins", kAllCandidatesMode);
        cachedMode.notYetRead = false;
    }
    return cachedMode.mode;
}

int AQE_I_Refiner::GetEdgeWeightForType(EEdgeType type)
{
    const WeightTable& table =
        GetFFJoinsMode() == kAllCandidatesMode ? kDefaultWeights : kOtherWeights;
    const auto position = static_cast<unsigned>(type);
    if (position < table.weights.size())
        return table.weights[position];
    ORV_ASSERT(false, "ORV_ASSERT(false);", "Source/QEI_Refiner", table.failureLine);
    return 0;
}
