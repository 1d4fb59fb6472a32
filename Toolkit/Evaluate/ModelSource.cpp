#include "Toolkit/Evaluate/ModelSource.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Import/ModelFolder.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

namespace qe::tool {

ColumnClasses::ColumnClasses(const std::vector<NamedPair>& pairs)
{
    std::map<std::string, std::set<std::string>> neighbours;
    for (const auto& [left, right] : pairs) {
        neighbours[left].insert(right);
        neighbours[right].insert(left);
    }
    while (!neighbours.empty()) {
        std::set<std::string> members;
        std::vector<std::string> open{neighbours.begin()->first};
        while (!open.empty()) {
            const std::string column = std::move(open.back());
            open.pop_back();
            if (!members.insert(column).second)
                continue;
            const auto found = neighbours.find(column);
            open.insert(open.end(), found->second.begin(), found->second.end());
            neighbours.erase(found);
        }
        mClasses.insert(std::move(members));
    }
}

bool ColumnClasses::CanBeMadeOf(const std::vector<NamedPair>& pairs) const
{
    std::vector<NamedPair> inside;
    for (const std::set<std::string>& members : mClasses)
        std::copy_if(pairs.begin(), pairs.end(), std::back_inserter(inside),
                     [&members](const NamedPair& pair) {
                         return members.count(pair.first) != 0 && members.count(pair.second) != 0;
                     });
    return ColumnClasses(inside) == *this;
}

namespace {

std::vector<NamedPair> FindModelPairs(const model::Model& model)
{
    std::vector<NamedPair> pairs;
    for (const amd_id& id : model.GetJoins()) {
        const model::ObjectRecord* const join = model.Find(model.GetTarget(id));
        if (join == nullptr)
            continue;
        for (NamedPair& pair : FindNamedPairs(model, join->left, join->right, join->text))
            pairs.push_back(std::move(pair));
    }
    return pairs;
}

} // namespace

ModelSource::ModelSource(const std::filesystem::path& path, Opener opener)
    : mOpener(std::move(opener)),
      mIsFolder(std::filesystem::is_directory(path) && !IsModelFolder(path))
{
    if (!mIsFolder) {
        Open("", path);
        return;
    }
    std::error_code failure;
    for (const auto& entry : std::filesystem::directory_iterator(path, failure)) {
        if (!entry.is_directory())
            mFiles.emplace(entry.path().stem().string(), entry.path());
    }
    if (failure)
        throw InputError(
            {InputProblem{path.string(), "the folder cannot be read: " + failure.message()}});
}

ModelSource::ModelSource(ToolModel model)
{
    Keep("", std::move(model));
}

const EvaluatedModel& ModelSource::Get(const std::string& database)
{
    const std::string key = mIsFolder ? database : "";
    if (const auto known = mModels.find(key); known != mModels.end())
        return known->second;
    const auto [first, last] = mFiles.equal_range(key);
    if (first == last)
        throw InputError(
            {InputProblem{"/db", "the folder holds no model of this database: " + database}});
    if (std::next(first) != last)
        throw InputError(
            {{"/db", "the folder holds several models of this database: " + database}});
    return Open(key, first->second);
}

const EvaluatedModel& ModelSource::Open(const std::string& key, const std::filesystem::path& path)
{
    return Keep(key, mOpener(path));
}

const EvaluatedModel& ModelSource::Keep(const std::string& key, ToolModel model)
{
    EvaluatedModel opened{std::move(model)};
    opened.pairs = FindModelPairs(*opened.tool.model);
    return mModels.emplace(key, std::move(opened)).first->second;
}

} // namespace qe::tool
