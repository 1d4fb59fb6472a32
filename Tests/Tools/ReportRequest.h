#ifndef TESTS_TOOLS_REPORTREQUEST_H
#define TESTS_TOOLS_REPORTREQUEST_H

#include "Tools/Ask/Answer.h"
#include "Tools/Ask/Question.h"

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace qe::test {

/// What joins set equal: groups of columns, each written as "subject.column" in lower case. Which
/// of the equations within a group are written down does not matter.
using EqualColumns = std::set<std::set<std::string>>;

/// A report as a file of requests tells it, with the joins that a person wrote for it.
struct ReportRequest
{
    std::string id;
    std::string database;
    tool::Question question;
    EqualColumns joins;
    /// How the person's joins compare with the smallest sets of declared keys.
    std::string comparison;
};

/// Reads a file with a request a line.
[[nodiscard]] std::vector<ReportRequest> ReadRequests(const std::filesystem::path& path);

/// Tells what the joins of the path set equal.
[[nodiscard]] EqualColumns ColumnsJoinedOn(const tool::Answer& answer,
                                           const std::vector<amd_id>& path);

} // namespace qe::test

#endif
