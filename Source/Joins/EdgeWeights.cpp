#include "AQE_I_Refiner.h"

#include "AUT_I_UserConfiguration.h"
#include "Joins/RaiseFailure.h"

#include <atomic>
#include <optional>

namespace {

constexpr int kAllCandidatesMode = 3;

/// Longer than any path: the distance of what cannot be reached.
constexpr int kUnreachable = 8888;

/// Returns the weight of a type of edge, or nothing when there is no such type.
std::optional<int> FindDefaultWeight(AQE_I_Refiner::EEdgeType type)
{
    switch (type) {
    case AQE_I_Refiner::EdgeTypeRelationship136:
    case AQE_I_Refiner::EdgeTypeShortcut:
        return 2;
    case AQE_I_Refiner::EdgeTypeBothEndsInSet:
        return 3;
    case AQE_I_Refiner::EdgeTypeOneEndInSet:
        return 7;
    case AQE_I_Refiner::EdgeTypeJoin:
        return 17;
    case AQE_I_Refiner::EdgeTypeNone:
        return kUnreachable;
    }
    return std::nullopt;
}

/// The same for every other value of "FFJoins".
std::optional<int> FindOtherWeight(AQE_I_Refiner::EEdgeType type)
{
    switch (type) {
    case AQE_I_Refiner::EdgeTypeRelationship136:
    case AQE_I_Refiner::EdgeTypeShortcut:
        return 1;
    case AQE_I_Refiner::EdgeTypeBothEndsInSet:
        return 2;
    case AQE_I_Refiner::EdgeTypeOneEndInSet:
        return 5;
    case AQE_I_Refiner::EdgeTypeJoin:
        return 11;
    case AQE_I_Refiner::EdgeTypeNone:
        return kUnreachable;
    }
    return std::nullopt;
}

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
    const bool isDefault = GetFFJoinsMode() == kAllCandidatesMode;
    const std::optional<int> weight = isDefault ? FindDefaultWeight(type) : FindOtherWeight(type);
    if (!weight)
        qe::RaiseBrokenInvariant(isDefault ? qe::host::kUnknownEdgeTypeByDefault
                                           : qe::host::kUnknownEdgeType);
    return weight.value_or(0);
}
