#ifndef TESTS_TOOLKIT_ASKING_H
#define TESTS_TOOLKIT_ASKING_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Format.h"
#include "Toolkit/Model/ToolModel.h"
#include "Tools/qerefine/RunTool.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qe::test {

/// Tables of a shop: sales have a customer and, maybe, one who pays; islands stand alone.
inline constexpr const char* kShopTables = R"(
    CREATE TABLE region (id INTEGER PRIMARY KEY);
    CREATE TABLE customer (id INTEGER PRIMARY KEY, region_id INT NOT NULL REFERENCES region);
    CREATE TABLE sale (customer_id INT NOT NULL REFERENCES customer,
                       payer_id INT REFERENCES customer);
    CREATE TABLE island (id INTEGER PRIMARY KEY);
)";

/// Returns a model as ModelText reads it.
[[nodiscard]] tool::ToolModel MakeModel(std::string_view text);
/// Returns a model of DDL statements.
[[nodiscard]] tool::ToolModel ImportText(std::string_view statements);

/// Returns the question for the path that connects the subjects.
[[nodiscard]] tool::Question Connect(std::vector<std::string> subjects);

/// Returns the names of the joins, with spaces between them.
[[nodiscard]] std::string NamesOf(const tool::Answer& answer, const std::vector<amd_id>& joins);

/// Returns the answer to the question, written in a format.
[[nodiscard]] std::string WriteAs(std::string_view format, const tool::ToolModel& model,
                                  const tool::Question& question,
                                  const tool::FormatOptions& options = {});

/// What a run of the tool came to.
struct ToolRun
{
    tool::EExitCode code = tool::EExitCode::Done;
    std::string output{};
    std::string error{};
};

/// Runs the tool with `input` on its standard input.
[[nodiscard]] ToolRun RunTool(const std::vector<std::string>& arguments,
                              const std::string& input = {}, const tool::Terminal& terminal = {});

/// Returns what is reported of wrong input; "no mistake" when nothing is.
[[nodiscard]] std::string MistakesOf(const std::function<void()>& read);

} // namespace qe::test

#endif
