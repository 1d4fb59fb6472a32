#ifndef TESTS_SUPPORT_RECORDINGSELECTOR_H
#define TESTS_SUPPORT_RECORDINGSELECTOR_H

#include "AQE_I_JoinPathDescriptor.h"
#include "AQE_I_PathSelector.h"
#include "Tests/Support/ModelText.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qe::test {

/// Chooses the position it was told to, the first at the start, and keeps the descriptors that it
/// was shown last.
class RecordingSelector : public AQE_I_PathSelector
{
public:
    std::uint32_t
    SelectPath(const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors) override
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
    void Clear() { mShown.clear(); }
    [[nodiscard]] int GetCallCount() const { return mCallCount; }

    /// Writes each descriptor as "joins: rank weight".
    [[nodiscard]] std::vector<std::string> GetShown(const ModelText& model) const
    {
        std::vector<std::string> texts;
        for (const auto& descriptor : mShown) {
            std::vector<amd_id> path;
            descriptor->GetJoinPath(path);
            texts.push_back(model.Names(path) + ": " + std::to_string(descriptor->GetRank()) + " " +
                            std::to_string(descriptor->GetComputedWeight()));
        }
        return texts;
    }

private:
    std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>> mShown;
    std::uint32_t mChoice = 0;
    int mCallCount = 0;
};

} // namespace qe::test

#endif
