#include "Tests/Tools/ReportRequest.h"

#include "Engine/Expression/ParseReport.h"
#include "Tools/Batch/QuestionReader.h"

#include <algorithm>
#include <cctype>
#include <fstream>

namespace qe::test {

namespace {

/// Databases find names whatever the case of their letters, and people rely on it.
std::string Fold(std::string name)
{
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return name;
}

void SetEqual(EqualColumns& groups, const std::string& left, const std::string& right)
{
    std::set<std::string> merged{Fold(left), Fold(right)};
    for (auto group = groups.begin(); group != groups.end();) {
        if (group->count(Fold(left)) + group->count(Fold(right)) == 0) {
            ++group;
            continue;
        }
        merged.insert(group->begin(), group->end());
        group = groups.erase(group);
    }
    groups.insert(merged);
}

} // namespace

std::vector<ReportRequest> ReadRequests(const std::filesystem::path& path)
{
    std::vector<ReportRequest> requests;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        const tool::Json json = tool::ParseJsonLine(line);
        ReportRequest request{
            json.at("id"), json.at("db"), tool::ReadQuestion(json, {}), {}, json.value("case", "")};
        for (const tool::Json& pair : json.at("joins"))
            SetEqual(request.joins, pair.at(0), pair.at(1));
        requests.push_back(std::move(request));
    }
    return requests;
}

EqualColumns ColumnsJoinedOn(const tool::Answer& answer, const std::vector<amd_id>& path)
{
    EqualColumns groups;
    for (const amd_id& id : path) {
        const auto references =
            expression::FindReferences(answer.FindJoin(id)->condition).references;
        for (std::size_t i = 0; i + 1 < references.size(); i += 2) {
            const auto column = [&](std::size_t index) {
                const auto& names = references[index].names;
                return names.at(1).ToStdString() + "." + names.at(2).ToStdString();
            };
            SetEqual(groups, column(i), column(i + 1));
        }
    }
    return groups;
}

} // namespace qe::test
