#ifndef TOOLKIT_HISTORY_LOADHISTORY_H
#define TOOLKIT_HISTORY_LOADHISTORY_H

#include "Toolkit/Model/ToolModel.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qe::model {
class Model;
}

namespace qe::tool {

class JoinHistory;

/// What files of past queries say about one model.
struct LoadedHistory
{
    std::shared_ptr<JoinHistory> history{};
    /// What could not be read, and which names the model does not have, one sentence each.
    std::vector<std::string> notes{};
};

/// Reads the files. Where a database is given, entries that name another one are passed over.
/// Throws an InputError when a file cannot be read at all.
[[nodiscard]] LoadedHistory LoadHistory(const model::Model& model,
                                        std::span<const std::filesystem::path> files,
                                        const std::optional<std::string>& database = std::nullopt);

/// Reads the files that the model names, which lie beside the path that it was read from, and
/// further ones. The history is null where there are none. Throws like LoadHistory.
[[nodiscard]] LoadedHistory
LoadHistoryOf(const ToolModel& model, const std::filesystem::path& path,
              std::span<const std::filesystem::path> more,
              const std::optional<std::string>& database = std::nullopt);

/// Returns the model as it is asked with the history: with the past joins that enough people make,
/// and with an advisor that chooses as they did.
[[nodiscard]] ToolModel WithHistory(ToolModel model, const std::shared_ptr<JoinHistory>& history);

} // namespace qe::tool

#endif
