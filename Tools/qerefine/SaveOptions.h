#ifndef TOOLS_QEREFINE_SAVEOPTIONS_H
#define TOOLS_QEREFINE_SAVEOPTIONS_H

#include "Toolkit/Ask/DecisionSaver.h"

#include <filesystem>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace qe::tool {

struct CommandContext;
struct ModelOptions;

/// Whether, and for which requests, the answer is kept in the model.
struct SaveOptions
{
    /// Nothing: it is not.
    std::optional<EDecisionScope> scope{};
    std::string reason{};
};

/// A model file as it is to be.
struct SavedModel
{
    std::filesystem::path path{};
    /// Empty when the file already says all.
    std::string text{};
    /// What is told about it.
    std::string message{};
};

/// Adds --save, --everywhere and --reason.
void AddSaveOptions(CLI::App& command, SaveOptions& options);

/// Refuses to save in what is no model file, or with settings that the model does not keep. Throws
/// InputError.
void CheckSaveOptions(const SaveOptions& options, const ModelOptions& model);

/// Returns the model file with the chosen path in it. Asks again to see that it is the answer then.
/// Throws InputError.
[[nodiscard]] SavedModel PrepareSave(const ModelOptions& options, const ChoiceToSave& choice);

/// Writes the file and tells so on the error stream. Throws InputError.
void Save(const SavedModel& saved, const CommandContext& context);

} // namespace qe::tool

#endif
