#ifndef TESTS_SUPPORT_RECORDINGSELECTOR_H
#define TESTS_SUPPORT_RECORDINGSELECTOR_H

#include "AQE_I_JoinPathDescriptor.h"
#include "AQE_I_PathSelector.h"
#include "Tests/Support/ModelText.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qe::test {

using Descriptors = std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>;

/// Writes each descriptor as "joins: rank weight".
[[nodiscard]] inline std::vector<std::string> ToTexts(const ModelText& model,
                                                      const Descriptors& descriptors)
{
    std::vector<std::string> texts;
    for (const auto& descriptor : descriptors) {
        std::vector<amd_id> path{amd_id(0, 1, 1)};
        descriptor->GetJoinPath(path);
        texts.push_back(model.Names(path) + ": " + std::to_string(descriptor->GetRank()) + " " +
                        std::to_string(descriptor->GetComputedWeight()));
    }
    return texts;
}

/// Chooses the position it was told to, the first at the start, and keeps the descriptors that it
/// was shown last.
class RecordingSelector : public AQE_I_PathSelector
{
public:
    std::uint32_t SelectPath(const Descriptors& descriptors) override
    {
        ++mCallCount;
        mShown = descriptors;
        return mChoice;
    }
    std::uint32_t SelectAlternative(const std::vector<std::vector<amd_id>>& /*paths*/) override
    {
        return mChoice;
    }

    void Choose(std::uint32_t index) { mChoice = index; }
    [[nodiscard]] int GetCallCount() const { return mCallCount; }

    [[nodiscard]] std::vector<std::string> GetShown(const ModelText& model) const
    {
        return ToTexts(model, mShown);
    }

private:
    Descriptors mShown;
    std::uint32_t mChoice = 0;
    int mCallCount = 0;
};

} // namespace qe::test

#endif
