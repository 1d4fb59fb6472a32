#include "Tests/Bindings/CCalls.h"
#include "Tests/Support/CountedAllocation.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string_view>

namespace {

using qe::test::CountedAllocation;

constexpr std::string_view kTables = R"(
    CREATE TABLE region (id INTEGER PRIMARY KEY);
    CREATE TABLE orders (id INTEGER PRIMARY KEY, region_id INT REFERENCES region);)";

/// Opens a model, asks it, and writes the answer. Returns the status of the call that failed.
qe_status TakeWholeRoad(qe_error** error)
{
    qe_model* model = nullptr;
    qe_answer* answer = nullptr;
    char* text = nullptr;
    qe_status status = qe_model_read(kTables.data(), kTables.size(), "shop.sql",
                                     R"({"from": "sqlite"})", &model, error);
    if (status == QE_OK)
        status = qe_ask(model, R"({"subjects": ["orders", "region"]})", &answer, error);
    if (status == QE_OK)
        status = qe_answer_write(answer, "json", nullptr, &text, error);
    qe_text_free(text);
    qe_answer_free(answer);
    qe_model_free(model);
    return status;
}

/// Whatever request for memory fails, the call says so, throws nothing and keeps nothing.
TEST(CMemory, EveryFailureIsAStatus)
{
    qe_error* error = nullptr;
    ASSERT_EQ(TakeWholeRoad(&error), QE_OK);
    const std::size_t before = CountedAllocation::GetLiveCount();
    // Each of the first requests, then ever fewer.
    for (std::size_t n = 1;; n += 1 + n / 64) {
        CountedAllocation::FailAtRequest(n);
        const qe_status status = TakeWholeRoad(&error);
        const bool hasFailed = CountedAllocation::HasFailed();
        CountedAllocation::FailAtRequest(0);
        if (!hasFailed) {
            EXPECT_EQ(status, QE_OK);
            break;
        }
        if (status != QE_OK) {
            ASSERT_EQ(status, QE_OUT_OF_MEMORY) << n << ": " << qe_error_text(error);
            ASSERT_EQ(qe_error_status(error), status);
            ASSERT_STREQ(qe_error_text(error), "out of memory");
        }
        qe_error_free(error);
        ASSERT_LE(CountedAllocation::GetLiveCount(), before + 8) << n;
    }
}

} // namespace
