#ifndef TOOLS_QEREFINE_COMPLETION_H
#define TOOLS_QEREFINE_COMPLETION_H

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qe::tool {

/// What a word on the command line may be.
struct Completion
{
    /// The words that begin like the one to complete, in order.
    std::vector<std::string> words{};
    /// Whether files will do as well; the shell knows those.
    bool takesFiles = false;
};

/// Returns what the last of the words behind the program's name may become, by the commands and
/// options that `app` holds. Subjects and joins are those of the model among the words; a model
/// that cannot be read has none.
[[nodiscard]] Completion CompleteWord(const CLI::App& app, const std::vector<std::string>& words);

} // namespace qe::tool

#endif
