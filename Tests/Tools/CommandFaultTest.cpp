#include "Tests/Support/CountedAllocation.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Tools/qerefine/RunTool.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <istream>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace qe::tool;
using qe::test::CountedAllocation;

/// Takes text without asking for memory, as a descriptor does.
class RoomyBuffer : public std::streambuf
{
public:
    RoomyBuffer() : mRoom(std::size_t{1} << 20, '\0')
    {
        setp(mRoom.data(), mRoom.data() + mRoom.size());
    }
    [[nodiscard]] std::string GetText() const { return {pbase(), pptr()}; }

private:
    std::string mRoom;
};

/// How a run ended, with the file that it wrote.
struct Outcome
{
    /// Of the process; less than 0 for a signal.
    int code = 0;
    std::string output{};
    std::string error{};

    friend bool operator==(const Outcome&, const Outcome&) = default;
    friend void PrintTo(const Outcome& outcome, std::ostream* out)
    {
        *out << "code " << outcome.code << ", output of " << outcome.output.size()
             << " bytes, error " << outcome.error;
    }
};

struct CommandCase
{
    const char* name;
    /// "@" begins the name of a file in the folder.
    const char* arguments;

    friend void PrintTo(const CommandCase& entry, std::ostream* out) { *out << entry.arguments; }
};

const CommandCase kCases[] = {
    {"path", "path @model.json sale region --alternatives 3"},
    {"pathAsJson", "path @model.json sale region --format json -o @out"},
    {"pathAsSql", "path @model.json sale region --format sql -o @out"},
    {"pathByHistory", "path @model.json sale region --history @past.jsonl --explain-history"},
    {"best", "best @model.json sale region -o @out"},
    {"subjects", "subjects @model.json sale region"},
    {"between", "between @model.json --from sale --to region --all"},
    {"tree", "tree @model.json sale region"},
    {"facts", "facts @model.json --format json"},
    {"shortcuts", "shortcuts @model.json"},
    {"batch", "batch @model.json @requests.jsonl --jobs 2 --quiet -o @out"},
    {"evaluate", "evaluate @model.json @requests.jsonl --list -o @out"},
    {"check", "check @model.json --format sarif -o @out"},
    {"show", "show @model.json --format dot -o @out"},
    {"history", "history pack @past.jsonl -o @out"},
    {"importSql", "import sql @tables.sql -o @out"},
    {"importAny", "import @tables.sql --roles"},
    {"exportMermaid", "export @model.json --to mermaid -o @out"},
    {"exportDbml", "export @model.json --to dbml -o @out"},
    {"completion", "completion bash"},
    {"wrongName", "path @model.json sael region"},
    {"wrongOption", "path @model.json sale --nonsense"},
    {"wrongModel", "path @wrong.json sale region"},
};

/// Returns how many requests for memory of a command fail, one in each run.
std::size_t GetSampleSize()
{
    constexpr std::size_t kDefault = 40;
    const char* const text = std::getenv("QE_FAULT_SAMPLES");
    return text == nullptr ? kDefault : std::stoul(text);
}

class CommandFaults : public testing::TestWithParam<CommandCase>
{
protected:
    void SetUp() override
    {
        mFolder.Write("tables.sql", qe::test::kShopTables);
        mFolder.Write("wrong.json", R"({"namespaces": [{"nam": "x", "subjects": [)");
        mFolder.Write("past.jsonl", R"({"subjects": ["sale", "customer"],
            "joins": [["sale.payer_id", "customer.id"]]})");
        mFolder.Write("requests.jsonl", R"({"id": 1, "subjects": ["sale", "region"],)"
                                        R"( "joins": [["sale.customer_id", "customer.id"]]})"
                                        "\n"
                                        R"({"id": 2, "subjects": ["sale", "rgion"]})"
                                        "\n");
        const qe::test::ToolRun made = qe::test::RunTool(
            {"import", "sql", mFolder / "tables.sql", "-o", mFolder / "model.json"});
        ASSERT_EQ(made.code, EExitCode::Done) << made.error;
        std::istringstream words(GetParam().arguments);
        for (std::string word; words >> word;)
            mArguments.push_back(word[0] == '@' ? mFolder / word.substr(1) : word);
    }

    /// Runs the command in a process of its own while the n-th request for memory fails; 0: none.
    [[nodiscard]] Outcome RunFailing(std::size_t n) const
    {
        std::filesystem::remove(mFolder / "out");
        std::filesystem::remove(mAside / "written");
        const pid_t child = ::fork();
        if (child == 0)
            RunInChild(n);
        int status = 0;
        ::waitpid(child, &status, 0);
        return {.code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status),
                .output = mAside.Read("written") + mFolder.Read("out"),
                .error = mAside.Read("told")};
    }

    [[noreturn]] void RunInChild(std::size_t n) const
    {
        const int told = ::creat((mAside / "told").c_str(), S_IRUSR | S_IWUSR);
        ::dup2(told, STDERR_FILENO);
        std::set_terminate(EndWithoutMemory);
        RoomyBuffer written;
        std::istringstream input;
        std::ostream output(&written);
        output.exceptions(std::ios::badbit);
        const CommandContext context{input, output, std::cerr, {}};
        const std::size_t before = CountedAllocation::GetRequestCount();
        CountedAllocation::FailAtRequest(n);
        const EExitCode code = RunTool(mArguments, context);
        CountedAllocation::FailAtRequest(0);
        const std::size_t requests = CountedAllocation::GetRequestCount() - before;
        mAside.Write("requests", std::to_string(requests));
        mAside.Write("written", written.GetText());
        std::_Exit(static_cast<int>(code));
    }

    /// What failed says so and leaves no file; what does not fail is the right answer. A request of
    /// a batch may fail alone.
    void Judge(const Outcome& outcome, const Outcome& right) const
    {
        if (outcome.code == right.code && outcome.output == right.output)
            return;
        if (std::string_view(GetParam().name) == "batch" &&
            outcome.code == static_cast<int>(EExitCode::NegativeResult)) {
            EXPECT_THAT(outcome.output, testing::HasSubstr("out of memory"));
            return;
        }
        EXPECT_EQ(outcome.code, static_cast<int>(EExitCode::InternalError)) << outcome.error;
        EXPECT_THAT(outcome.error, testing::HasSubstr("out of memory"));
        EXPECT_FALSE(std::filesystem::exists(mFolder / "out"));
        const auto entries = std::filesystem::directory_iterator(mFolder / "");
        EXPECT_EQ(std::distance(begin(entries), end(entries)), 5) << "a file was left behind";
    }

    qe::test::TemporaryFolder mFolder;
    /// What the process that runs the command tells this one.
    qe::test::TemporaryFolder mAside;
    std::vector<std::string> mArguments;
};

TEST_P(CommandFaults, ShortOfMemoryTheToolSaysSo)
{
    const Outcome right = RunFailing(0);
    const std::size_t requests = std::stoul(mAside.Read("requests"));
    const std::size_t step = std::max<std::size_t>(requests / GetSampleSize(), 1);
    std::size_t faults = 0;
    for (std::size_t n = 1; n <= requests && !HasFailure(); n += step) {
        SCOPED_TRACE("request " + std::to_string(n) + " of " + std::to_string(requests));
        Judge(RunFailing(n), right);
        ++faults;
    }
    EXPECT_EQ(RunFailing(0), right);
    std::cout << "faults injected: " << faults << '\n';
}

INSTANTIATE_TEST_SUITE_P(EveryCommand, CommandFaults, testing::ValuesIn(kCases),
                         [](const auto& entry) { return std::string(entry.param.name); });

} // namespace
