#include "Tests/Bindings/CCalls.h"
#include "Tests/Support/CountedAllocation.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <exception>
#include <map>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using qe::test::CountedAllocation;

constexpr std::string_view kTables = R"(
    CREATE TABLE region (id INTEGER PRIMARY KEY);
    CREATE TABLE orders (id INTEGER PRIMARY KEY, region_id INT REFERENCES region);)";

/// How far the road was taken, and how it ended.
struct Road
{
    qe_status status = QE_OK;
    bool isAnswered = false;
};

/// Opens a model, asks it, and writes the answer, up to the call that fails.
Road TakeRoad(qe_error** error)
{
    qe_model* model = nullptr;
    qe_answer* answer = nullptr;
    char* text = nullptr;
    Road road;
    road.status = qe_model_read(kTables.data(), kTables.size(), "shop.sql", R"({"from": "sqlite"})",
                                &model, error);
    if (road.status == QE_OK)
        road.status = qe_ask(model, R"({"subjects": ["orders", "region"]})", &answer, error);
    road.isAnswered = road.status == QE_OK;
    if (road.isAnswered)
        road.status = qe_answer_write(answer, "json", nullptr, &text, error);
    qe_text_free(text);
    qe_answer_free(answer);
    qe_model_free(model);
    return road;
}

/// How a process ended that took the road while one of its requests for memory failed.
enum EEnd
{
    WithoutFailure,
    /// Although one request failed.
    Done,
    OutOfMemory,
    /// In a destructor of the JSON library, which asks for memory.
    WhileFreeing,
    WrongStatus,
    Thrown,
    Leaking,
    Otherwise
};

EEnd TakeRoadFailingAt(std::size_t n, std::size_t live)
{
    qe_error* error = nullptr;
    CountedAllocation::FailAtRequest(n);
    try {
        const Road road = TakeRoad(&error);
        if (!CountedAllocation::HasFailed())
            return WithoutFailure;
        const bool isTold = road.status == QE_OUT_OF_MEMORY &&
                            qe_error_status(error) == road.status &&
                            std::string_view(qe_error_text(error)) == "out of memory";
        qe_error_free(error);
        // Of a list in braces that fails half-way, the compiler loses what is made already.
        constexpr std::size_t kLongestList = 8;
        if (!road.isAnswered && CountedAllocation::GetLiveCount() > live + kLongestList)
            return Leaking;
        return road.status == QE_OK ? Done : isTold ? OutOfMemory : WrongStatus;
    } catch (...) {
        return Thrown;
    }
}

/// Returns how a child process ends.
EEnd RunChild(std::size_t n, std::size_t live)
{
    const pid_t child = ::fork();
    if (child == 0) {
        std::set_terminate([] { ::_exit(WhileFreeing); });
        ::_exit(TakeRoadFailingAt(n, live));
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? static_cast<EEnd>(WEXITSTATUS(status)) : Otherwise;
}

/// Whatever request for memory fails, the call says so, throws nothing and keeps nothing.
TEST(CMemory, EveryFailureIsAStatus)
{
    ASSERT_EQ(TakeRoad(nullptr).status, QE_OK);
    const std::size_t live = CountedAllocation::GetLiveCount();
    std::map<EEnd, std::size_t> ends;
    EEnd end = Done;
    // Each of the first requests, then ever fewer.
    for (std::size_t n = 1; end != WithoutFailure; n += 1 + n / 64) {
        end = RunChild(n, live);
        ASSERT_LE(end, WhileFreeing) << n;
        ++ends[end];
    }
    EXPECT_GT(ends[OutOfMemory], 100U);
    EXPECT_LT(ends[WhileFreeing], ends[OutOfMemory] / 4);
}

} // namespace
