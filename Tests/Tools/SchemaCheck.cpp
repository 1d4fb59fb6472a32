#include "Tests/Tools/SchemaCheck.h"

#include <cstdlib>
#include <stdexcept>
#include <sys/wait.h>

namespace qe::test {

namespace {

constexpr int NoValidator = 77;
constexpr int NoPython = 127;

} // namespace

SchemaCheck::SchemaCheck() : mFolder("schema")
{
    std::filesystem::create_directory(mFolder.GetPath());
}

void SchemaCheck::Add(const std::string& text)
{
    std::ofstream(mFolder.GetPath() + '/' + std::to_string(mCount++), std::ios::binary) << text;
}

std::optional<std::vector<std::string>> SchemaCheck::FindRefused() const
{
    const TemporaryFile output("refused");
    const std::string root = QEREFINER_SOURCE_DIR;
    const std::string command = "python3 '" + root + "/Tests/Tools/check_schema.py' '" + root +
                                "/Documentation/model.schema.json' '" + mFolder.GetPath() +
                                "'/* > '" + output.GetPath() + '\'';
    const int status = std::system(command.c_str());
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    if (code == NoValidator || code == NoPython)
        return std::nullopt;
    if (code != 0)
        throw std::runtime_error("cannot check the schema: " + command);
    std::vector<std::string> refused;
    std::istringstream lines(output.Read());
    for (std::string line; std::getline(lines, line);)
        refused.push_back(line);
    return refused;
}

} // namespace qe::test
