#include "Tests/Toolkit/SchemaCheck.h"

#include "Tests/Support/ModelText.h"
#include "Tests/Support/TemporaryFolder.h"

#include <cstdlib>
#include <stdexcept>
#include <sys/wait.h>

namespace qe::test {

std::optional<std::vector<std::string>> FindRefused(const std::string& schema,
                                                    const std::vector<std::string>& documents)
{
    constexpr int kNoValidator = 77;
    constexpr int kNoPython = 127;
    const TemporaryFolder folder;
    std::string command = "python3 '" QEREFINER_SOURCE_DIR
                          "/Tests/Toolkit/check_schema.py' '" QEREFINER_SOURCE_DIR
                          "/Documentation/" +
                          schema + '\'';
    for (std::size_t i = 0; i < documents.size(); ++i)
        command += ' ' + folder.Write(std::to_string(i), documents[i]);
    const int status = std::system((command + " > " + folder / "refused").c_str());
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    if (code == kNoValidator || code == kNoPython)
        return std::nullopt;
    if (code != 0)
        throw std::runtime_error("cannot check the schema: " + command);
    return SplitList(folder.Read("refused"), '\n');
}

} // namespace qe::test
