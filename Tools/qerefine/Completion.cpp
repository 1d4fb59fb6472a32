#include "Tools/qerefine/Completion.h"

#include "Engine/Model/Model.h"
#include "Engine/Model/Names.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Import/OpenModel.h"
#include "Tools/qerefine/Arguments.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <exception>
#include <sstream>
#include <string_view>

namespace qe::tool {

namespace {

using Words = std::vector<std::string>;

/// What the words before the last one say.
class Line
{
public:
    Line(const CLI::App& app, const Words& words) : mCommand(&FindCommand(app, words))
    {
        const CLI::App* level = &app;
        for (const std::string& word : words)
            Read(word, level);
    }

    [[nodiscard]] const CLI::App& GetCommand() const { return *mCommand; }
    /// The option whose value comes next, or null.
    [[nodiscard]] const CLI::Option* GetOpenOption() const { return mOpen; }
    /// The values that belong to no option.
    [[nodiscard]] const Words& GetValues() const { return mValues; }
    [[nodiscard]] bool HasRoles() const { return mHasRoles; }

private:
    void Read(const std::string& word, const CLI::App*& level)
    {
        mHasRoles = mHasRoles || word.starts_with("--roles");
        if (mOpen != nullptr) {
            mOpen = nullptr;
        } else if (word.size() > 1 && word.front() == '-') {
            const CLI::Option* const option = mCommand->get_option_no_throw(word);
            mOpen = option != nullptr && option->get_items_expected_max() > 0 ? option : nullptr;
        } else if (level != mCommand) {
            level = &FindCommand(*level, {word});
        } else {
            mValues.push_back(word);
        }
    }

    const CLI::App* mCommand;
    const CLI::Option* mOpen = nullptr;
    Words mValues;
    bool mHasRoles = false;
};

/// Returns the names of the model that the line names, or none.
Words ListNames(const Line& line, model::ENameKind kind)
{
    Words names;
    if (line.GetValues().empty())
        return names;
    try {
        // Who types does not wait for a server that is far away.
        constexpr std::chrono::seconds kPatience{2};
        const ImportOptions options{
            .roles = line.HasRoles() ? ERoles::Shortcuts : ERoles::Plain,
            .server = {.limits = {.connect = kPatience, .statement = kPatience}}};
        const ToolModel tool = OpenModel(line.GetValues().front(), options);
        const model::Model& model = *tool.model;
        if (kind == model::ENameKind::Subject) {
            for (const amd_id& id : model.GetSubjects())
                names.push_back(SubjectName(model, id));
        } else {
            for (const amd_id& id : model.GetJoins())
                names.push_back(model.Find(id)->name);
        }
    } catch (const std::exception&) {
        // A line that is being typed need not be right.
        return {};
    }
    return names;
}

/// Returns the values of what is called so in the help: the choices "a|b", or names of the model.
Completion CompleteValue(const Line& line, const std::string& type)
{
    if (type == "SUBJECT")
        return {.words = ListNames(line, model::ENameKind::Subject)};
    if (type == "JOIN")
        return {.words = ListNames(line, model::ENameKind::Join)};
    if (type == "FILE" || type == "MODEL" || type == "REQUESTS")
        return {.takesFiles = true};
    Completion completion;
    std::istringstream choices(type);
    for (std::string choice; type.find('|') != std::string::npos && getline(choices, choice, '|');)
        completion.words.push_back(choice);
    return completion;
}

Completion CompletePositional(const Line& line)
{
    std::size_t position = 0;
    for (const CLI::Option* const option : line.GetCommand().get_options()) {
        if (!option->get_positional())
            continue;
        const bool takesAll = option->get_items_expected_max() > 1;
        if (takesAll || position++ == line.GetValues().size()) {
            const bool isChoice = option->get_type_name().find('|') != std::string::npos;
            return CompleteValue(line, isChoice ? option->get_type_name() : option->get_name(true));
        }
    }
    return {};
}

Completion ListWords(const Line& line, const std::string& current)
{
    if (line.GetOpenOption() != nullptr)
        return CompleteValue(line, line.GetOpenOption()->get_type_name());
    Completion completion;
    if (current.starts_with('-')) {
        for (const CLI::Option* const option : line.GetCommand().get_options())
            for (const std::string& name : option->get_lnames())
                completion.words.push_back("--" + name);
        return completion;
    }
    completion = CompletePositional(line);
    if (line.GetValues().empty()) {
        const Words commands = ListCommands(line.GetCommand());
        completion.words.insert(completion.words.end(), commands.begin(), commands.end());
    }
    return completion;
}

} // namespace

Completion CompleteWord(const CLI::App& app, const std::vector<std::string>& words)
{
    const std::string current = words.empty() ? "" : words.back();
    const Words before(words.begin(), words.empty() ? words.end() : words.end() - 1);
    Completion completion = ListWords(Line(app, before), current);
    std::erase_if(completion.words, [folded = model::FoldCase(current)](const std::string& word) {
        return !model::FoldCase(word).starts_with(folded);
    });
    std::sort(completion.words.begin(), completion.words.end());
    const auto last = std::unique(completion.words.begin(), completion.words.end());
    completion.words.erase(last, completion.words.end());
    return completion;
}

} // namespace qe::tool
