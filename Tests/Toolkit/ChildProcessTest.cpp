#include "Toolkit/Draw/ChildProcess.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Draw/Graphviz.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace {

using namespace qe::tool;
using namespace std::chrono_literals;

std::optional<bool> RunFor(std::chrono::milliseconds limit, std::vector<std::string> arguments)
{
    const auto close = [](std::FILE* file) { std::fclose(file); };
    const std::unique_ptr<std::FILE, decltype(close)> file(std::tmpfile(), close);
    ChildProcess child(std::move(arguments), {file.get(), file.get(), file.get()});
    return child.Wait(limit);
}

TEST(ChildProcess, IsWaitedForAsLongAsIsWanted)
{
    EXPECT_EQ(RunFor(1min, {"true"}), true);
    EXPECT_EQ(RunFor(1min, {"false"}), false);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(RunFor(20ms, {"sleep", "60"}), std::nullopt);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 30s);
    EXPECT_THROW(RunFor(1min, {"no-such-program-here"}), std::system_error);
}

TEST(Graphviz, IsGivenUpWithAdvice)
{
    const qe::test::TemporaryFolder folder;
    const std::string program = folder.Write("dot", "#!/bin/sh\nsleep 60\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    const std::string path = std::getenv("PATH");
    setenv("PATH", (std::filesystem::path(program).parent_path().string() + ":" + path).c_str(), 1);
    unsigned told = 0;
    const DrawingWait wait{.limit = 200ms, .observer = [&told](const Progress&) { ++told; }};
    EXPECT_THAT(
        qe::test::MistakesOf([&] { (void)RunGraphviz("graph {}", EImage::Svg, wait); }),
        testing::HasSubstr("draw less of it (show: --limit, --around), or take --format dot"));
    EXPECT_GT(told, 0U);
    setenv("PATH", path.c_str(), 1);
}

} // namespace
