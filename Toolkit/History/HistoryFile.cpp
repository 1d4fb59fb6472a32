#include "Toolkit/History/HistoryFile.h"

#include "Toolkit/History/RecordReader.h"
#include "Toolkit/History/SqlLog.h"
#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/TextEdges.h"

#include <string>
#include <string_view>

namespace qe::tool {

namespace {

/// A history is read whole.
constexpr std::uintmax_t kMaximumHistorySize = std::uintmax_t{1} << 30;
constexpr std::string_view kBlanks = " \t\r\n";

HistoryEntries ReadRecords(std::string_view text, const std::string& name)
{
    HistoryEntries file;
    std::size_t number = 0;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        ++number;
        if (line.find_first_not_of(kBlanks) == std::string_view::npos)
            continue;
        ++file.entries;
        const std::string place = name + ':' + std::to_string(number);
        try {
            file.queries.push_back(ReadRecord(line));
            file.queries.back().place = place;
        } catch (const InputError& error) {
            InputProblem problem = error.GetProblems().front();
            problem.text = problem.place + (problem.place.empty() ? "" : ": ") + problem.text;
            problem.place = place;
            file.AddUnread(problem);
        }
    }
    return file;
}

} // namespace

HistoryEntries ReadHistoryFile(const std::filesystem::path& path, const SchemaColumns* columns)
{
    const std::string content = ReadInputFile(path, kMaximumHistorySize);
    const std::string_view text = SkipByteOrderMark(content);
    if (text.find('\0') != std::string_view::npos)
        throw InputError(
            {InputProblem{path.string(), "a history is a text: lines of JSON, or SQL statements"}});
    const std::size_t first = text.find_first_not_of(kBlanks);
    const std::string name = path.filename().string();
    return first != std::string_view::npos && text[first] == '{' ? ReadRecords(text, name)
                                                                 : ReadSqlLog(text, name, columns);
}

} // namespace qe::tool
