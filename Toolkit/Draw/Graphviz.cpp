#include "Toolkit/Draw/Graphviz.h"

#include "Toolkit/Text/InputFile.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

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

/// What the child does with its standard streams.
class Streams
{
public:
    Streams() { posix_spawn_file_actions_init(&mActions); }
    Streams(const Streams&) = delete;
    Streams& operator=(const Streams&) = delete;
    ~Streams() { posix_spawn_file_actions_destroy(&mActions); }

    void Connect(std::FILE* file, int descriptor)
    {
        posix_spawn_file_actions_adddup2(&mActions, fileno(file), descriptor);
    }
    [[nodiscard]] const posix_spawn_file_actions_t* Get() const { return &mActions; }

private:
    posix_spawn_file_actions_t mActions{};
};

pid_t Start(const Streams& streams, EImage image)
{
    std::string program = "dot";
    std::string format = image == EImage::Svg ? "-Tsvg" : "-Tpng";
    std::string resolution = image == EImage::Svg ? "-Gdpi=72" : "-Gdpi=110";
    std::array<char*, 4> arguments{program.data(), format.data(), resolution.data(), nullptr};
    pid_t child = 0;
    const int failure =
        posix_spawnp(&child, "dot", streams.Get(), nullptr, arguments.data(), environ);
    if (failure == ENOENT)
        Fail("The program dot was not found: install Graphviz (Debian: apt-get install graphviz), "
             "or take --format dot");
    if (failure != 0)
        Fail(std::string("The program dot cannot be started: ") + std::strerror(failure));
    return child;
}

} // namespace

std::string RunGraphviz(const std::string& dot, EImage image)
{
    const File input = OpenTemporaryFile();
    const File output = OpenTemporaryFile();
    const File errors = OpenTemporaryFile();
    if (std::fwrite(dot.data(), 1, dot.size(), input.get()) != dot.size() ||
        std::fflush(input.get()) != 0)
        Fail("The graph cannot be handed to dot");
    std::rewind(input.get());
    Streams streams;
    streams.Connect(input.get(), STDIN_FILENO);
    streams.Connect(output.get(), STDOUT_FILENO);
    streams.Connect(errors.get(), STDERR_FILENO);
    const pid_t child = Start(streams, image);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {}
    std::string drawn = ReadAll(output.get());
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0 || drawn.empty())
        Fail("The program dot failed: " + ReadAll(errors.get()));
    return drawn;
}

} // namespace qe::tool
