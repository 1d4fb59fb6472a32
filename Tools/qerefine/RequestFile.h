#ifndef TOOLS_QEREFINE_REQUESTFILE_H
#define TOOLS_QEREFINE_REQUESTFILE_H

#include "Toolkit/Ask/Question.h"
#include "Toolkit/Import/OpenModel.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iosfwd>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qe::tool {

/// What the commands that read a file of requests have in common on the command line.
struct RequestFileOptions
{
    std::filesystem::path model{};
    /// "-" is standard input.
    std::string requests = "-";
    std::string roles = "plain";
    std::vector<std::string> settings{};
    /// What requests do not say, as one JSON object.
    std::string defaults = "{}";

    /// Adds the options; the object outlives the command.
    void AddTo(CLI::App& command);

    [[nodiscard]] ImportOptions GetOpenOptions() const;
    /// Sets the settings for the process and gives the question with what requests do not say.
    /// Throws InputError.
    [[nodiscard]] Question Prepare() const;
};

/// A file of requests, or standard input.
class RequestFile
{
public:
    /// Throws InputError when the file cannot be read.
    RequestFile(const std::string& name, std::istream& standardInput);

    [[nodiscard]] std::istream& Get() { return *mInput; }
    /// Gives the size in bytes; 0 when it is not known.
    [[nodiscard]] std::uint64_t GetSize() const { return mSize; }

private:
    std::ifstream mFile;
    std::istream* mInput;
    std::uint64_t mSize = 0;
};

} // namespace qe::tool

#endif
