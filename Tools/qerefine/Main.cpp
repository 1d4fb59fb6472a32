#include "Tools/qerefine/RunTool.h"

#include <iostream>
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
    std::ios::sync_with_stdio(false);
    const qe::tool::CommandContext context{std::cin, std::cout, std::cerr, LookAtTerminal()};
    const qe::tool::EExitCode code = qe::tool::RunTool({argv + 1, argv + argc}, context);
    std::cout.flush();
    return static_cast<int>(code);
}
