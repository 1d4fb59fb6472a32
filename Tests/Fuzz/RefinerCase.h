#ifndef TESTS_FUZZ_REFINERCASE_H
#define TESTS_FUZZ_REFINERCASE_H

#include "AQE_Governors.h"
#include "AQE_RequestContext.h"
#include "Engine/Model/Model.h"
#include "Tests/Source/Reference/RequestDraw.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qe::test {

/// The operations of the refiner; shortcut information is set before each of them.
enum class ERefinerOperation : std::uint8_t
{
    JoinPath,
    JoinedSubjects,
    PathBetween,
    BestPaths,
    BestPathsBetween,
    TreeJoins,
};

inline constexpr std::size_t kRefinerOperations = 6;

/// A small model, and a request about it with everything that a host hands over.
struct RefinerCase
{
    std::shared_ptr<const model::Model> model{};
    Lists lists{};
    std::optional<AQE_Governors> governors{};
    AQE_Governors shortcutGovernors{};
    AQE_RequestContext::ECommandType command = AQE_RequestContext::CommandTypeQuery;
    bool hasCache = false;
    /// What the host's join cache says that joins weigh.
    std::map<amd_id, int> weights{};
    bool hasShortcutInfo = false;
    /// The position that the host's selector chooses; nothing without one.
    std::optional<std::uint32_t> choice{};
    bool useFactTableCount = false;
    bool useStraightestPath = false;
    bool newAlgo = true;
    bool isGovernorOff = false;
    /// In the order in which they are asked for.
    std::vector<ERefinerOperation> operations{};
};

/// Returns the case that the bytes stand for; all bytes stand for one.
[[nodiscard]] RefinerCase DecodeRefinerCase(std::string_view bytes);

/// Returns model and request, for people.
[[nodiscard]] std::string Describe(const RefinerCase& input);

/// Returns the same request with the lists that are sets turned round, and their ids repeated.
[[nodiscard]] RefinerCase Reorder(RefinerCase original);

} // namespace qe::test

#endif
