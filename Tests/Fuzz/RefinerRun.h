#ifndef TESTS_FUZZ_REFINERRUN_H
#define TESTS_FUZZ_REFINERRUN_H

#include "AQE_I_PathSelector.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "AQE_RequestContext.h"
#include "Engine/Model/ModelGateway.h"
#include "Tests/Fuzz/RefinerCase.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qe::test {

/// What one operation left behind. What an operation does not touch stays empty.
struct RefinerOutcome
{
    Ids path{};
    std::vector<Ids> paths{};
    int weight = 0;
    std::vector<std::pair<amd_id, amd_id>> ends{};
    bool result = false;
    /// The code of the failure that the operation reported, or the line of an assertion; nothing
    /// when it did not fail.
    std::optional<int> failure{};
    std::size_t warnings = 0;

    friend bool operator==(const RefinerOutcome&, const RefinerOutcome&) = default;
};

/// The host of one request: everything that it hands over, and the operations.
class RefinerRun
{
public:
    /// Refers to the case.
    explicit RefinerRun(const RefinerCase& input);
    RefinerRun(const RefinerRun&) = delete;
    RefinerRun& operator=(const RefinerRun&) = delete;

    /// Does one operation and returns what came of it. Other exceptions than those that the refiner
    /// reports pass through.
    [[nodiscard]] RefinerOutcome Do(ERefinerOperation operation);

    /// Returns the join as the refiner reads it; nothing when it cannot.
    [[nodiscard]] std::optional<AQE_I_Refiner::QEjoinInfo> ReadJoin(const amd_id& join);
    [[nodiscard]] amd_id FindQuerySubject(const amd_id& id);
    /// Returns the joins that pass over shortcuts, as far as the request knows of them.
    [[nodiscard]] std::vector<AQE_I_Refiner::QEjoinInfo> GetShortcutJoins();

private:
    /// Takes the position that it was told, whether there is one or not.
    class Selector : public AQE_I_PathSelector
    {
    public:
        explicit Selector(std::uint32_t choice) : mChoice(choice) {}
        std::uint32_t
        SelectPath(const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors) override;
        std::uint32_t SelectAlternative(const std::vector<std::vector<amd_id>>& paths) override;

    private:
        std::uint32_t mChoice;
    };

    void Call(ERefinerOperation operation, RefinerOutcome& outcome);

    const RefinerCase& mCase;
    model::ModelGateway mGateway;
    std::optional<AQE_Governors> mGovernors;
    AQE_Governors mShortcutGovernors;
    AQE_RequestContext mContext;
    Selector mSelector;
    std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> mShortcutInfo;
    AUT_RefPtr<AQE_I_Refiner> mRefiner;
};

} // namespace qe::test

#endif
