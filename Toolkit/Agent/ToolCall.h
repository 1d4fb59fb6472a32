#ifndef TOOLKIT_AGENT_TOOLCALL_H
#define TOOLKIT_AGENT_TOOLCALL_H

#include "Toolkit/Agent/ModelShelf.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Text/JsonObject.h"
#include "Toolkit/Text/JsonProblems.h"

#include <cstddef>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace qe::tool {

/// What a tool came to, for the agent that called it.
struct ToolResult
{
    /// For the model behind the agent to read.
    std::string text{};
    /// The same for programs, as the tool's output schema has it; null for a mistake.
    nlohmann::ordered_json content{};
    /// Whether it is a mistake of the caller's, which the text tells.
    bool isMistake = false;
};

/// Asks the models of a shelf, and keeps what it finds out of each. One thread at a time uses it.
class ShelfAsker
{
public:
    /// Refers to the shelf.
    explicit ShelfAsker(const ModelShelf& shelf) : mShelf(shelf) {}

    [[nodiscard]] const ModelShelf& GetShelf() const { return mShelf; }
    /// See tool::Ask. The model is one of the shelf.
    [[nodiscard]] Answer Ask(const ServedModel& model, const Question& question);

private:
    const ModelShelf& mShelf;
    std::map<const ServedModel*, std::unique_ptr<Asker>> mAskers;
};

/// One call of a tool, whose arguments are read by their names.
struct ToolCall
{
    ShelfAsker& asker;
    const nlohmann::json& json;
    /// The same, with the mistakes that are found in it.
    JsonObject& arguments;
    JsonProblems& problems;

    /// Returns the model that the call is about. Throws InputError.
    [[nodiscard]] const ServedModel& FindModel();
};

/// Part of a list that comes in pages.
struct ListPage
{
    std::size_t first = 0;
    std::size_t count = 0;
    /// Where the next page begins, as clients hand it back; nothing behind the last page.
    std::optional<std::string> next{};
};

/// Returns the page of a list of `total` entries that the call asks for; with no limit of its own
/// it has `usualLimit` entries. Throws InputError for a cursor that is none.
[[nodiscard]] ListPage ReadPage(ToolCall& call, std::size_t total, std::size_t usualLimit);

/// Returns what the tool of that name answers. What is wrong with the arguments is a result too:
/// whoever called can mend it. Whatever else fails is thrown. The tool is one of ListToolNames.
[[nodiscard]] ToolResult CallTool(ShelfAsker& asker, std::string_view tool,
                                  const nlohmann::json& arguments);

// The tools themselves. Each throws InputError for arguments that it cannot use.
[[nodiscard]] ToolResult ListSubjects(ToolCall& call);
[[nodiscard]] ToolResult DescribeSubject(ToolCall& call);
[[nodiscard]] ToolResult CheckServedModel(ToolCall& call);
[[nodiscard]] ToolResult FindJoinPath(ToolCall& call);
[[nodiscard]] ToolResult ListPathAlternatives(ToolCall& call);
[[nodiscard]] ToolResult ExplainPath(ToolCall& call);

} // namespace qe::tool

#endif
