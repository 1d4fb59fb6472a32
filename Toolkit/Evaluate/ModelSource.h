#ifndef TOOLKIT_EVALUATE_MODELSOURCE_H
#define TOOLKIT_EVALUATE_MODELSOURCE_H

#include "Toolkit/Evaluate/ColumnClasses.h"
#include "Toolkit/Model/ToolModel.h"
#include "amd_id.h"

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace qe::tool {

/// A model with what an evaluation needs to know of it.
struct EvaluatedModel
{
    ToolModel tool{};
    /// The pairs of columns on which its relationships join.
    std::vector<NamedPair> pairs{};
};

/// Returns the pairs of columns of a join condition between two ends; shortcuts go by the name of
/// what they stand for.
[[nodiscard]] std::vector<NamedPair> FindNamedPairs(const model::Model& model, const amd_id& left,
                                                    const amd_id& right,
                                                    const std::string& condition);

/// Finds the model that a request is about: the one model that it was made with or, in a folder,
/// the file that is called as the request's database, whatever its extension. Models are opened
/// when they are first wanted and kept.
class ModelSource
{
public:
    /// Reads a model, or throws InputError.
    using Opener = std::function<ToolModel(const std::filesystem::path& path)>;

    /// Throws InputError when there is nothing there, or when the one model cannot be read.
    ModelSource(const std::filesystem::path& path, Opener opener);

    /// Throws InputError when there is no such model or it cannot be read.
    [[nodiscard]] const EvaluatedModel& Get(const std::string& database);

private:
    const EvaluatedModel& Open(const std::string& key, const std::filesystem::path& path);

    Opener mOpener;
    bool mIsFolder;
    std::multimap<std::string, std::filesystem::path> mFiles;
    std::map<std::string, EvaluatedModel> mModels;
};

} // namespace qe::tool

#endif
