#include "Bindings/C/AskerPool.h"

#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Text/InputFile.h"

#include <utility>

namespace qe::binding {

AskerPool::AskerPool(const tool::ToolModel& model) : mModel(model)
{}

AskerPool::~AskerPool() = default;

tool::Answer AskerPool::Ask(const tool::Question& question)
{
    // One that failed is not used again.
    std::unique_ptr<tool::Asker> asker = Take();
    tool::Answer answer;
    try {
        answer = asker->Ask(question);
    } catch (const tool::InputError&) {
        GiveBack(std::move(asker));
        throw;
    }
    GiveBack(std::move(asker));
    return answer;
}

std::unique_ptr<tool::Asker> AskerPool::Take()
{
    {
        const std::lock_guard lock(mMutex);
        if (!mIdle.empty()) {
            std::unique_ptr<tool::Asker> asker = std::move(mIdle.back());
            mIdle.pop_back();
            return asker;
        }
    }
    return std::make_unique<tool::Asker>(mModel);
}

void AskerPool::GiveBack(std::unique_ptr<tool::Asker> asker)
{
    const std::lock_guard lock(mMutex);
    mIdle.push_back(std::move(asker));
}

} // namespace qe::binding
