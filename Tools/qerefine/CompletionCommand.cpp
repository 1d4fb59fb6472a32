#include "Tools/qerefine/Command.h"

#include "Tools/qerefine/CommandOptions.h"

#include <ostream>

namespace qe::tool {

namespace {

// Each script asks the tool what the words that are typed so far may become: a word a line, and
// ":files" where files will do.

constexpr const char* kBash = R"sh(# bash completion for qerefine
_qerefine()
{
    local words=("${COMP_WORDS[@]:1:COMP_CWORD}") current word
    words[-1]=${words[-1]#[\"\']}
    current=${words[-1]}
    COMPREPLY=()
    while IFS= read -r word; do
        if [[ $word == :files ]]; then
            compopt -o filenames
            mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$current")
        else
            COMPREPLY+=("$(printf '%q' "$word")")
        fi
    done < <("${COMP_WORDS[0]}" complete "${words[@]}" 2>/dev/null)
}
complete -F _qerefine qerefine
)sh";

constexpr const char* kZsh = R"sh(#compdef qerefine
_qerefine()
{
    local word
    local -a candidates
    for word in "${(@f)$("${words[1]}" complete "${(@)words[2,CURRENT]}" 2>/dev/null)}"; do
        if [[ $word == :files ]]; then
            _files
        elif [[ -n $word ]]; then
            candidates+=("$word")
        fi
    done
    compadd -a candidates
}
compdef _qerefine qerefine
)sh";

constexpr const char* kFish = R"sh(# fish completion for qerefine
function __qerefine_complete
    set -l words (commandline -opc) (commandline -ct)
    for word in ($words[1] complete $words[2..-1] 2>/dev/null)
        if test "$word" = :files
            __fish_complete_path (commandline -ct)
        else
            echo -- $word
        end
    end
end
complete -c qerefine -f -a '(__qerefine_complete)'
)sh";

struct Options
{
    const char* script = nullptr;
};

/// What the command works with is all in its options.
struct Nothing
{};

void AddOptions(CLI::App& command, Options& options)
{
    AddChoice(command, "SHELL", options.script, {{"bash", kBash}, {"zsh", kZsh}, {"fish", kFish}},
              "The shell to complete for")
        ->required();
}

Nothing Run(const Options& /*options*/, const CommandContext& /*context*/)
{
    return {};
}

EExitCode Report(const Options& options, const Nothing& /*nothing*/, const CommandContext& context)
{
    context.output << options.script;
    return EExitCode::Done;
}

} // namespace

void AddCompletionCommand(const CommandLine& line)
{
    const CommandHelp help{.name = "completion",
                           .summary = "Writes what lets a shell complete commands, options, "
                                      "subjects and joins.",
                           .example = "source <(qerefine completion bash)"};
    AddCommand(line, Command<Options, Nothing>{
                         .help = help, .addOptions = AddOptions, .run = Run, .report = Report});
}

} // namespace qe::tool
