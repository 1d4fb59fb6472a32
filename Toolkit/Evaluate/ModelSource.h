#ifndef TOOLKIT_EVALUATE_MODELSOURCE_H
#define TOOLKIT_EVALUATE_MODELSOURCE_H

#include "Toolkit/History/NamedPairs.h"
#include "Toolkit/Model/ToolModel.h"

#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace qe::tool {

/// Sets of columns that joins make equal. Two lists of joins that make the same columns equal lead
/// to the same rows: a = b and b = c mean what a = c and b = c mean.
class ColumnClasses
{
public:
    ColumnClasses() = default;
    explicit ColumnClasses(const std::vector<NamedPair>& pairs);

    [[nodiscard]] const std::set<std::set<std::string>>& Get() const { return mClasses; }

    /// Returns whether the pairs that have both columns in one of these classes make up all of
    /// these classes.
    [[nodiscard]] bool CanBeMadeOf(const std::vector<NamedPair>& pairs) const;

    friend bool operator==(const ColumnClasses&, const ColumnClasses&) = default;

private:
    std::set<std::set<std::string>> mClasses;
};

/// A model with what an evaluation needs to know of it.
struct EvaluatedModel
{
    ToolModel tool{};
    /// The pairs of columns on which its relationships join.
    std::vector<NamedPair> pairs{};
};

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
    /// Takes the one model, which is open.
    explicit ModelSource(ToolModel model);

    /// Throws InputError when there is no such model or it cannot be read.
    [[nodiscard]] const EvaluatedModel& Get(const std::string& database);

    /// Returns whether requests about these two databases ask the same model.
    [[nodiscard]] bool AreOfOneModel(const std::string& left, const std::string& right) const
    {
        return !mIsFolder || left == right;
    }

private:
    const EvaluatedModel& Open(const std::string& key, const std::filesystem::path& path);
    const EvaluatedModel& Keep(const std::string& key, ToolModel model);

    Opener mOpener;
    bool mIsFolder = false;
    std::multimap<std::string, std::filesystem::path> mFiles;
    std::map<std::string, EvaluatedModel> mModels;
};

} // namespace qe::tool

#endif
