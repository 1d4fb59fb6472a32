#include "Toolkit/Agent/AgentServer.h"

#include "Toolkit/Agent/ToolCall.h"
#include "Toolkit/Batch/LineReader.h"
#include "Toolkit/Text/JsonText.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <list>
#include <mutex>
#include <new>
#include <ostream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;

/// The reaction to one line, until its answers are written.
struct Job
{
    enum class EState : std::uint8_t
    {
        Waiting,
        BeingDone,
    };

    Reaction reaction{};
    EState state = EState::Waiting;
    /// Ids of calls that nobody waits for any more.
    std::vector<nlohmann::json> cancelled{};

    [[nodiscard]] bool IsCancelled(const nlohmann::json& id) const
    {
        return std::find(cancelled.begin(), cancelled.end(), id) != cancelled.end();
    }
    [[nodiscard]] bool Calls(const nlohmann::json& id) const
    {
        return std::any_of(reaction.answers.begin(), reaction.answers.end(),
                           [&id](const auto& answer) {
                               const auto* const call = std::get_if<PendingCall>(&answer);
                               return call != nullptr && call->id == id;
                           });
    }
};

/// An answer as it goes to the client.
struct WrittenAnswer
{
    /// That of the call, which may be cancelled; null for what is no call.
    nlohmann::json id{};
    std::string text{};
};

/// Works on calls with several threads while the messages behind them are read.
class CallWorkers
{
public:
    CallWorkers(const ModelShelf& shelf, const AgentSession& session, std::ostream& output,
                const AgentServerOptions& options)
        : mShelf(shelf), mSession(session), mOutput(output), mMostWaiting(options.mostWaiting)
    {
        for (std::size_t i = 0; i < options.threads; ++i)
            mThreads.emplace_back([this] { Run(); });
    }
    CallWorkers(const CallWorkers&) = delete;
    CallWorkers& operator=(const CallWorkers&) = delete;
    ~CallWorkers() { End(); }

    /// Answers what can be answered at once, and leaves calls to the threads. Throws what writing
    /// threw.
    void Take(Reaction reaction)
    {
        for (const nlohmann::json& id : reaction.cancelled)
            Cancel(id);
        if (HasCalls(reaction))
            return Queue(std::move(reaction));
        const Job job{.reaction = std::move(reaction)};
        Write(Select(job, Answer(job, nullptr)));
        ThrowFailure();
    }

    /// Waits until every call is answered. Throws what writing threw.
    void Finish()
    {
        End();
        ThrowFailure();
    }

private:
    static bool HasCalls(const Reaction& reaction)
    {
        return std::any_of(
            reaction.answers.begin(), reaction.answers.end(),
            [](const auto& answer) { return std::holds_alternative<PendingCall>(answer); });
    }

    void Queue(Reaction reaction)
    {
        ThrowFailure();
        std::unique_lock lock(mMutex);
        mRoomIsThere.wait(lock, [this] { return mWaiting < mMostWaiting; });
        mJobs.push_back({.reaction = std::move(reaction)});
        ++mWaiting;
        mWorkIsThere.notify_one();
    }

    void Cancel(const nlohmann::json& id)
    {
        const std::lock_guard lock(mMutex);
        for (Job& job : mJobs) {
            if (job.Calls(id))
                job.cancelled.push_back(id);
        }
    }

    void Run()
    {
        ShelfAsker asker(mShelf);
        std::unique_lock lock(mMutex);
        while (true) {
            mWorkIsThere.wait(lock, [this] { return mWaiting != 0 || mIsEnding; });
            if (mWaiting == 0)
                return;
            const auto job = std::find_if(mJobs.begin(), mJobs.end(), [](const Job& each) {
                return each.state == Job::EState::Waiting;
            });
            job->state = Job::EState::BeingDone;
            --mWaiting;
            mRoomIsThere.notify_one();
            lock.unlock();
            Write(Select(*job, Answer(*job, &asker)));
            lock.lock();
            mJobs.erase(job);
        }
    }

    /// Returns the answers of the job but for calls that are cancelled by then. The asker is not
    /// null where there are calls.
    [[nodiscard]] std::vector<WrittenAnswer> Answer(const Job& job, ShelfAsker* asker)
    {
        std::vector<WrittenAnswer> answers;
        for (const auto& answer : job.reaction.answers) {
            if (const auto* const told = std::get_if<Json>(&answer))
                answers.push_back({.text = ToJsonLine(*told)});
            else if (const auto& call = std::get<PendingCall>(answer); !IsCancelled(job, call.id))
                answers.push_back({.id = call.id, .text = AnswerCall(call, *asker)});
        }
        return answers;
    }

    [[nodiscard]] std::string AnswerCall(const PendingCall& call, ShelfAsker& asker) const
    {
        try {
            return ToJsonLine(mSession.Answer(call, asker));
        } catch (const std::bad_alloc&) {
            return ToJsonLine(
                MakeRpcError(call.id, RpcFailure(ERpcError::Internal, "Out of memory")));
        }
    }

    [[nodiscard]] bool IsCancelled(const Job& job, const nlohmann::json& id)
    {
        const std::lock_guard lock(mMutex);
        return job.IsCancelled(id);
    }

    /// Returns the lines of the answers that somebody still waits for: those of a batch together
    /// on one.
    [[nodiscard]] std::string Select(const Job& job, const std::vector<WrittenAnswer>& answers)
    {
        const std::lock_guard lock(mMutex);
        const bool isBatch = job.reaction.form == Reaction::EForm::Batch;
        std::string text;
        for (const WrittenAnswer& answer : answers) {
            if (!answer.id.is_null() && job.IsCancelled(answer.id))
                continue;
            if (isBatch)
                text += (text.empty() ? '[' : ',') + answer.text;
            else
                text += answer.text + '\n';
        }
        return isBatch && !text.empty() ? text + "]\n" : text;
    }

    /// Waits for a client that is slow to read, during which others can go on.
    void Write(const std::string& text)
    {
        if (text.empty())
            return;
        const std::lock_guard lock(mOutputMutex);
        if (mHasFailed)
            return;
        try {
            mOutput << text << std::flush;
        } catch (...) {
            mFailure = std::current_exception();
            mHasFailed = true;
        }
    }

    void ThrowFailure() const
    {
        if (mHasFailed)
            std::rethrow_exception(mFailure);
    }

    void End()
    {
        {
            const std::lock_guard lock(mMutex);
            mIsEnding = true;
            mWorkIsThere.notify_all();
        }
        for (std::thread& thread : mThreads) {
            if (thread.joinable())
                thread.join();
        }
    }

    const ModelShelf& mShelf;
    const AgentSession& mSession;
    std::ostream& mOutput;
    std::size_t mMostWaiting;
    std::mutex mMutex;
    std::condition_variable mWorkIsThere;
    std::condition_variable mRoomIsThere;
    /// In the order of their lines; those being done stay until they are answered.
    std::list<Job> mJobs;
    std::size_t mWaiting = 0;
    bool mIsEnding = false;
    std::mutex mOutputMutex;
    /// Set once, before the flag is.
    std::exception_ptr mFailure;
    std::atomic<bool> mHasFailed = false;
    std::vector<std::thread> mThreads;
};

} // namespace

void ServeAgent(const ModelShelf& shelf, std::istream& input, std::ostream& output,
                const AgentServerOptions& options)
{
    AgentSession session(options.identity);
    CallWorkers workers(shelf, session, output, options);
    LineReader reader(input, options.longestMessage);
    RequestLine line;
    while (reader.Next(line))
        workers.Take(session.Receive(line));
    workers.Finish();
}

} // namespace qe::tool
