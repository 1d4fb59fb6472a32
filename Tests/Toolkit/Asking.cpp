#include "Tests/Toolkit/Asking.h"

#include "Tests/Support/ModelText.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Text/InputFile.h"

#include <sstream>

namespace qe::test {

tool::ToolModel MakeModel(std::string_view text)
{
    return {ModelText(text).GetModel()};
}

tool::ToolModel ImportText(std::string_view statements)
{
    return tool::ImportSql({TemporaryFolder().Write("tables.sql", statements)}, {});
}

tool::Question Connect(std::vector<std::string> subjects)
{
    tool::Question question;
    question.subjects = std::move(subjects);
    return question;
}

std::string NamesOf(const tool::Answer& answer, const std::vector<amd_id>& joins)
{
    std::string names;
    for (const amd_id& join : joins)
        names += (names.empty() ? "" : " ") + answer.FindJoin(join)->name;
    return names;
}

std::string WriteAs(std::string_view format, const tool::ToolModel& model,
                    const tool::Question& question, const tool::FormatOptions& options)
{
    std::ostringstream out;
    tool::FindFormat(format)->write(out, {model, question, tool::Ask(model, question), options});
    return out.str();
}

ToolRun RunTool(const std::vector<std::string>& arguments, const std::string& input,
                const tool::Terminal& terminal)
{
    std::istringstream in(input);
    std::ostringstream out;
    std::ostringstream error;
    const tool::CommandContext context{in, out, error, terminal};
    const tool::EExitCode code = tool::RunTool(arguments, context);
    return {code, out.str(), error.str()};
}

std::string MistakesOf(const std::function<void()>& read)
{
    try {
        read();
    } catch (const tool::InputError& error) {
        return error.what();
    }
    return "no mistake";
}

} // namespace qe::test
