#include "Toolkit/Draw/Graphviz.h"

#include "Toolkit/Draw/ChildProcess.h"
#include "Toolkit/Text/InputFile.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <system_error>
#include <vector>

namespace qe::tool {

namespace {

struct FileCloser
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

[[noreturn]] void Fail(const std::string& text)
{
    throw InputError({{"graphviz", text}});
}

/// Files without a name, unlike pipes, cannot block either side.
File OpenTemporaryFile()
{
    File file(std::tmpfile());
    if (!file)
        Fail(std::string("No temporary file can be made: ") + std::strerror(errno));
    return file;
}

std::string ReadAll(std::FILE* file)
{
    std::string text;
    std::array<char, 65536> buffer{};
    std::rewind(file);
    while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), file))
        text.append(buffer.data(), size);
    return text;
}

[[noreturn]] void FailToStart(const std::system_error& failure)
{
    if (failure.code() == std::errc::no_such_file_or_directory)
        Fail("The program dot was not found: install Graphviz (Debian: apt-get install graphviz), "
             "or take --format dot");
    Fail("The program dot cannot be started: " + failure.code().message());
}

std::vector<std::string> MakeArguments(EImage image)
{
    if (image == EImage::Svg)
        return {"dot", "-Tsvg", "-Gdpi=72"};
    return {"dot", "-Tpng", "-Gdpi=110"};
}

/// Returns whether the program ended well.
bool WaitFor(ChildProcess& child, const DrawingWait& wait)
{
    using std::chrono::duration_cast;
    using std::chrono::seconds;
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    const std::optional<bool> endedWell = child.Wait(wait.limit, [&] {
        const auto time = duration_cast<seconds>(Clock::now() - begin).count();
        if (wait.observer)
            wait.observer(
                {.count = static_cast<std::uint64_t>(time), .unit = "seconds of drawing"});
    });
    if (!endedWell)
        Fail("The drawing was given up after " +
             std::to_string(duration_cast<seconds>(wait.limit).count()) +
             " seconds: draw less of it (show: --limit, --around), or take --format dot");
    return *endedWell;
}

} // namespace

std::string RunGraphviz(const std::string& dot, EImage image, const DrawingWait& wait)
{
    const File input = OpenTemporaryFile();
    const File output = OpenTemporaryFile();
    const File errors = OpenTemporaryFile();
    if (std::fwrite(dot.data(), 1, dot.size(), input.get()) != dot.size() ||
        std::fflush(input.get()) != 0)
        Fail("The graph cannot be handed to dot");
    std::rewind(input.get());
    try {
        ChildProcess child(MakeArguments(image),
                           {.input = input.get(), .output = output.get(), .errors = errors.get()},
                           wait.signals);
        const bool endedWell = WaitFor(child, wait);
        std::string drawn = ReadAll(output.get());
        if (!endedWell || drawn.empty())
            Fail("The program dot failed: " + ReadAll(errors.get()));
        return drawn;
    } catch (const std::system_error& failure) {
        FailToStart(failure);
    }
}

} // namespace qe::tool
