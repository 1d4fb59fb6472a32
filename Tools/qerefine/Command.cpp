#include "Tools/qerefine/Command.h"

#include "Toolkit/Text/OutputFile.h"
#include "Toolkit/Text/TextStream.h"
#include "Tools/qerefine/StandardStreams.h"

namespace qe::tool {

void AddOutput(CLI::App& command, std::string& file)
{
    command
        .add_option("-o,--output", file,
                    "The file that the output goes to; \"-\", the default, is standard output")
        ->type_name("FILE")
        ->group("Output");
}

EExitCode Deliver(const CommandContext& context, const std::string& file,
                  const std::function<EExitCode(const CommandContext&)>& work)
{
    if (file.empty() || file == "-")
        return work(context);
    TextStream text;
    Terminal terminal = context.terminal;
    terminal.output = Terminal::EStream::Redirected;
    const EExitCode code = work({context.input, text, context.error, terminal});
    const bool hasFailed = code != EExitCode::Done && code != EExitCode::NegativeResult;
    if (hasFailed && text.view().empty())
        return code;
    try {
        WriteFileWhole(file, text.view());
    } catch (const InputError& failure) {
        throw OutputError(failure);
    }
    return code;
}

} // namespace qe::tool
