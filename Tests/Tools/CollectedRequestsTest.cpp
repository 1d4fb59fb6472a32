#include "Tests/Tools/ReportRequest.h"
#include "Tools/Ask/Asker.h"
#include "Tools/Import/SqlImport.h"

#include <gmock/gmock.h>

#include <map>

namespace {

using namespace qe::tool;
using qe::test::ColumnsJoinedOn;
using qe::test::ReportRequest;
namespace fs = std::filesystem;

/// Requests that people wrote against public schemas, which lie outside the project.
class CollectedRequests : public testing::TestWithParam<const char*>
{
protected:
    void SetUp() override
    {
        const fs::path file = mFolder / "requests" / (std::string(GetParam()) + ".jsonl");
        if (!fs::exists(file))
            GTEST_SKIP() << "there are no collected requests: " << file;
        mRequests = qe::test::ReadRequests(file);
        ASSERT_FALSE(mRequests.empty());
    }

    const ToolModel& ModelOf(const std::string& database)
    {
        const auto known = mModels.find(database);
        if (known != mModels.end())
            return known->second;
        const fs::path schemas = mFolder / "schemas";
        fs::path file = schemas / GetParam() / (database + ".sql");
        if (!fs::exists(file))
            file = schemas / (database + ".sql");
        return mModels[database] = ImportSql({file}, {});
    }

    fs::path mFolder = QEREFINER_DATA_DIR;
    std::vector<ReportRequest> mRequests;
    std::map<std::string, ToolModel> mModels;
};

/// Where the person's joins are the only smallest tree of declared keys, they are the answer;
/// where they are one of several such trees, they are among the candidates, unless a notice says
/// that these were too many. What no keys connect is told apart, subject by subject. Everything
/// else is answered somehow.
TEST_P(CollectedRequests, AreAnsweredOrRefusedWithTheReason)
{
    for (const ReportRequest& request : mRequests) {
        SCOPED_TRACE(request.id);
        const Answer answer = Ask(ModelOf(request.database), request.question);
        EXPECT_FALSE(answer.error) << answer.error->text;

        if (request.comparison == "unreachable") {
            EXPECT_FALSE(answer.connected);
            EXPECT_GT(answer.separation.groups.size(), 1U);
            EXPECT_EQ(answer.separation.bridge.size(), answer.separation.groups.size());
            continue;
        }
        EXPECT_TRUE(answer.connected);
        const auto joins = ColumnsJoinedOn(answer, answer.path);
        if (request.comparison == "unique_equal") {
            EXPECT_EQ(joins, request.joins);
        } else if (request.comparison == "tied" && answer.notices.empty()) {
            EXPECT_TRUE(std::any_of(answer.alternatives.begin(), answer.alternatives.end(),
                                    [&](const Alternative& alternative) {
                                        return ColumnsJoinedOn(answer, alternative.joins) ==
                                               request.joins;
                                    }));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Set, CollectedRequests, testing::Values("imdb", "mantle", "spider"),
                         [](const auto& suite) { return std::string(suite.param); });

} // namespace
