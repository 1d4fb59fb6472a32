#include "Toolkit/Agent/ModelShelf.h"

#include "Engine/Model/Names.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>

namespace qe::tool {

namespace {

const char* const kPlace = "model";

bool IsPlainWord(std::string_view text)
{
    constexpr std::string_view kPlain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.-";
    return !text.empty() && text.find_first_not_of(kPlain) == std::string_view::npos;
}

/// Returns what the file, folder or database behind the path is called.
std::string NameOfPath(const std::string& path)
{
    std::string shown = ToShownPath(path);
    if (shown.find("://") != std::string::npos)
        shown.resize(std::min(shown.find('?'), shown.size()));
    while (shown.size() > 1 && shown.back() == '/')
        shown.pop_back();
    const std::string stem = std::filesystem::path(shown).stem().string();
    return stem.empty() ? shown : stem;
}

} // namespace

ModelShelf::ModelShelf(std::vector<ServedModel> models) : mModels(std::move(models))
{
    std::set<std::string_view> names;
    for (const ServedModel& model : mModels) {
        if (!names.insert(model.name).second)
            throw InputError(
                {{"MODEL",
                  "Two models have one name, which NAME=MODEL can change: \"" + model.name + '"'}});
    }
}

const ServedModel& ModelShelf::Find(std::string_view name) const
{
    if (name.empty() && mModels.size() == 1)
        return mModels.front();
    if (name.empty())
        throw InputError(
            {{kPlace, "Several models are served; name one of " + JoinTexts(ListNames())}});
    const auto found =
        std::find_if(mModels.begin(), mModels.end(),
                     [name](const ServedModel& model) { return model.name == name; });
    if (found != mModels.end())
        return *found;
    const std::vector<std::string> names = ListNames();
    const std::vector<std::string> nearest =
        model::NearestNames(name, {names.begin(), names.end()});
    const std::string hint = nearest.empty() ? "; there are " + JoinFirstTexts(names, 20) : "";
    throw InputError({{kPlace, "No model is called \"" + std::string(name) + '"' + hint, nearest}});
}

std::vector<std::string> ModelShelf::ListNames() const
{
    std::vector<std::string> names;
    for (const ServedModel& model : mModels)
        names.push_back(model.name);
    return names;
}

NamedModel ParseNamedModel(std::string_view text)
{
    const std::size_t equal = text.find('=');
    if (equal != std::string_view::npos && IsPlainWord(text.substr(0, equal)) &&
        !std::filesystem::exists(text))
        return {.name = std::string(text.substr(0, equal)),
                .path = std::string(text.substr(equal + 1))};
    std::string path(text);
    std::string name = NameOfPath(path);
    return {.name = std::move(name), .path = std::move(path)};
}

} // namespace qe::tool
