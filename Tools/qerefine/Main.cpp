#include "Tools/qerefine/RunTool.h"
#include "Tools/qerefine/StandardStreams.h"

#include <exception>
#include <iostream>
#include <ostream>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

using qe::tool::Terminal;

Terminal::EStream KindOf(int descriptor)
{
    return isatty(descriptor) == 1 ? Terminal::EStream::Terminal : Terminal::EStream::Redirected;
}

Terminal LookAtTerminal()
{
    Terminal terminal{KindOf(STDIN_FILENO), KindOf(STDOUT_FILENO), KindOf(STDERR_FILENO)};
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        terminal.width = size.ws_col;
    return terminal;
}

} // namespace

int main(int argc, char** argv)
{
    std::set_terminate(qe::tool::EndWithoutMemory);
    qe::tool::GuardStandardStreams();
    std::ios::sync_with_stdio(false);
    qe::tool::DescriptorBuffer buffer(STDOUT_FILENO, "standard output");
    std::ostream output(&buffer);
    output.exceptions(std::ios::badbit);
    const qe::tool::CommandContext context{std::cin, output, std::cerr, LookAtTerminal()};
    // What a command says about its output follows behind it, wherever both go.
    std::cerr.tie(&output);
    const qe::tool::EExitCode code = qe::tool::RunTool({argv + 1, argv + argc}, context);
    std::cerr.tie(nullptr);
    return static_cast<int>(code);
}
