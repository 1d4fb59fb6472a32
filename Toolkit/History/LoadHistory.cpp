#include "Toolkit/History/LoadHistory.h"

#include "Engine/Model/Model.h"
#include "Toolkit/History/HistoryChoice.h"
#include "Toolkit/History/HistoryFile.h"
#include "Toolkit/History/JoinHistory.h"
#include "Toolkit/History/PastJoins.h"

#include <algorithm>
#include <cstddef>

namespace qe::tool {

namespace {

constexpr std::size_t kNamedUnknowns = 5;

std::string DescribeUnread(const std::string& name, const HistoryEntries& file)
{
    std::string text = "history " + name + ": " + std::to_string(file.unread) + " of " +
                       std::to_string(file.entries) + " entries cannot be read";
    const char* separator = ": ";
    for (const InputProblem& problem : file.firstUnread) {
        text += separator + problem.place + ' ' + problem.text;
        separator = "; ";
    }
    return text + (file.unread > file.firstUnread.size() ? "; ..." : "");
}

std::string DescribeUnknown(const JoinHistory& history)
{
    const auto& names = history.GetUnknownNames();
    const std::vector<std::string_view> tables = history.GetColumns().GetTableNames();
    std::string text = "history: the model lacks " + std::to_string(names.size()) +
                       (names.size() == 1 ? " name" : " names");
    const char* separator = ": ";
    std::size_t count = 0;
    for (const auto& [name, uses] : names) {
        if (++count > kNamedUnknowns)
            return text + ", ...";
        text += separator + name;
        const auto nearest = model::NearestNames(name, tables, 1);
        if (!nearest.empty())
            text += " (did you mean " + nearest.front() + "?)";
        separator = ", ";
    }
    return text;
}

} // namespace

LoadedHistory LoadHistory(const model::Model& model, std::span<const std::filesystem::path> files,
                          const std::optional<std::string>& database)
{
    LoadedHistory loaded{.history = std::make_shared<JoinHistory>(model)};
    for (const std::filesystem::path& path : files) {
        const HistoryEntries file = ReadHistoryFile(path, &loaded.history->GetColumns());
        if (file.unread > 0)
            loaded.notes.push_back(DescribeUnread(path.string(), file));
        for (const PastQuery& query : file.queries) {
            if (!database || query.database.empty() || query.database == *database)
                loaded.history->Add(query);
        }
    }
    if (!loaded.history->GetUnknownNames().empty())
        loaded.notes.push_back(DescribeUnknown(*loaded.history));
    return loaded;
}

LoadedHistory LoadHistoryOf(const ToolModel& model, const std::filesystem::path& path,
                            std::span<const std::filesystem::path> more,
                            const std::optional<std::string>& database)
{
    std::vector<std::filesystem::path> files;
    for (const std::string& name : model.histories)
        files.push_back(path.parent_path() / name);
    files.insert(files.end(), more.begin(), more.end());
    return files.empty() ? LoadedHistory() : LoadHistory(*model.model, files, database);
}

ToolModel WithHistory(ToolModel model, const std::shared_ptr<JoinHistory>& history)
{
    model.model = AddPastJoins(*model.model, *history, EPastJoins::Offered);
    model.advisor = std::make_shared<HistoryChoice>(history);
    return model;
}

} // namespace qe::tool
