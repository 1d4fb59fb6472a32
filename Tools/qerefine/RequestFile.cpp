#include "Tools/qerefine/RequestFile.h"

#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/Text/InputError.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace qe::tool {

void RequestFileOptions::AddTo(CLI::App& command)
{
    command.add_option("REQUESTS", requests, "One JSON object a line; \"-\" is standard input")
        ->type_name("");
    command
        .add_option("--roles", roles,
                    "For databases and DDL: make shortcuts for tables that "
                    "another one refers to several times")
        ->type_name("plain|shortcuts")
        ->check(CLI::IsMember(std::vector<std::string>{"plain", "shortcuts"}).description(""));
    command.add_option("--set", settings, "User setting, such as \"General Options/NewAlgo=0\"")
        ->type_name("SECTION/KEY=NUMBER")
        ->allow_extra_args(false);
    command.add_option("--defaults", defaults, "What requests do not say: an object like them")
        ->type_name("JSON");
}

ImportOptions RequestFileOptions::GetOpenOptions() const
{
    return {roles == "shortcuts" ? ERoles::Shortcuts : ERoles::Plain};
}

Question RequestFileOptions::Prepare() const
{
    Question question;
    try {
        question = ReadDefaults(defaults);
    } catch (const InputError& error) {
        throw InputError({InputProblem{"--defaults", error.what()}});
    }
    for (const std::string& setting : settings)
        question.settings.push_back(ParseSetting(setting));
    ApplySettings(question.settings);
    return question;
}

RequestFile::RequestFile(const std::string& name, std::istream& standardInput)
    : mInput(&standardInput)
{
    if (name == "-")
        return;
    mInput = &mFile;
    mFile.open(name, std::ios::binary);
    // A folder can be opened, but not read.
    if (!mFile || std::filesystem::is_directory(name))
        throw InputError({InputProblem{name, std::string("the requests cannot be read: ") +
                                                 std::strerror(mFile ? EISDIR : errno)}});
    std::error_code noSize;
    const auto size = std::filesystem::file_size(name, noSize);
    mSize = noSize ? 0 : size;
}

} // namespace qe::tool
