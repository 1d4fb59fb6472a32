#include "Toolkit/Ask/LogNotices.h"

#include "Engine/Services/LogCapture.h"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace qe::tool {

namespace {

constexpr int kNoticeLevel = 1;

/// Hands each entry of the log to the object that gathers on the thread that wrote it.
class NoticeRouter
{
public:
    static NoticeRouter& Get()
    {
        static NoticeRouter router;
        return router;
    }

    void Add(std::vector<std::string>& texts)
    {
        const std::lock_guard lock(mMutex);
        if (mListeners.empty())
            mCapture = std::make_unique<LogCapture>(
                kNoticeLevel, [this](const LogEntry& entry) { Route(entry); },
                LogCapture::EOthers::AlsoReceive);
        mListeners.emplace(std::this_thread::get_id(), &texts);
    }

    void Remove(const std::vector<std::string>& texts)
    {
        // A capture waits for writers as it ends, and writers wait for the mutex.
        std::unique_ptr<LogCapture> finished;
        const std::lock_guard lock(mMutex);
        const auto [first, last] = mListeners.equal_range(std::this_thread::get_id());
        const auto found = std::find_if(
            first, last, [&texts](const auto& listener) { return listener.second == &texts; });
        if (found != last)
            mListeners.erase(found);
        if (mListeners.empty())
            finished = std::move(mCapture);
    }

private:
    void Route(const LogEntry& entry)
    {
        const bool isFailure = entry.title.View() == "Exception";
        const std::lock_guard lock(mMutex);
        const auto [first, last] = mListeners.equal_range(std::this_thread::get_id());
        for (auto listener = first; listener != last && !isFailure; ++listener)
            listener->second->push_back(entry.text.ToStdString());
    }

    std::mutex mMutex;
    std::unique_ptr<LogCapture> mCapture;
    std::multimap<std::thread::id, std::vector<std::string>*> mListeners;
};

} // namespace

LogNotices::LogNotices()
{
    NoticeRouter::Get().Add(mTexts);
}

LogNotices::~LogNotices()
{
    NoticeRouter::Get().Remove(mTexts);
}

std::vector<std::string> LogNotices::Get() const
{
    std::vector<std::string> texts;
    for (std::string text : mTexts) {
        while (!text.empty() && text.back() == '\n')
            text.pop_back();
        if (std::find(texts.begin(), texts.end(), text) == texts.end())
            texts.push_back(text);
    }
    return texts;
}

} // namespace qe::tool
