#ifndef BINDINGS_C_ASKERPOOL_H
#define BINDINGS_C_ASKERPOOL_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"

#include <memory>
#include <mutex>
#include <vector>

namespace qe::tool {
class Asker;
struct ToolModel;
} // namespace qe::tool

namespace qe::binding {

/// Answers questions about one model on any number of threads. What an asker has found out about
/// the model serves the next question too, whoever asks it; there are as many as ever asked at one
/// time.
class AskerPool
{
public:
    /// Refers to the model.
    explicit AskerPool(const tool::ToolModel& model);
    AskerPool(const AskerPool&) = delete;
    AskerPool& operator=(const AskerPool&) = delete;
    ~AskerPool();

    /// Returns and throws what tool::Ask does.
    [[nodiscard]] tool::Answer Ask(const tool::Question& question);

private:
    [[nodiscard]] std::unique_ptr<tool::Asker> Take();
    void GiveBack(std::unique_ptr<tool::Asker> asker);

    const tool::ToolModel& mModel;
    std::mutex mMutex;
    std::vector<std::unique_ptr<tool::Asker>> mIdle;
};

} // namespace qe::binding

#endif
