#include "Tests/Fuzz/AgentFaults.h"

#include "Tests/Fuzz/MemoryFile.h"
#include "Toolkit/Agent/AgentServer.h"
#include "Toolkit/Agent/ModelShelf.h"
#include "Toolkit/Import/OpenModel.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

namespace qe::test {

namespace {

using namespace qe::tool;

/// Two ways lead from a sale to a region, and an island to nothing.
constexpr std::string_view kTables = R"(
    CREATE TABLE region (id INTEGER PRIMARY KEY);
    CREATE TABLE store (id INTEGER PRIMARY KEY, region_id INT NOT NULL REFERENCES region);
    CREATE TABLE customer (id INTEGER PRIMARY KEY, region_id INT NOT NULL REFERENCES region);
    CREATE TABLE sale (store_id INT REFERENCES store, customer_id INT REFERENCES customer);
    CREATE TABLE island (id INTEGER PRIMARY KEY);
)";

const ModelShelf& GetShelf()
{
    static const ModelShelf shelf = [] {
        const MemoryFile file(kTables);
        const ToolModel model = OpenModel(file.GetPath());
        return ModelShelf({{.name = "shop", .model = model, .asked = model}});
    }();
    return shelf;
}

std::string Serve(std::string_view bytes)
{
    std::istringstream input{std::string(bytes)};
    std::ostringstream output;
    ServeAgent(GetShelf(), input, output, {.longestMessage = 2000});
    return output.str();
}

std::string FindMessageFault(const nlohmann::json& message)
{
    if (message.is_array()) {
        for (const nlohmann::json& each : message) {
            if (std::string fault = FindMessageFault(each); !fault.empty())
                return fault;
        }
        return message.empty() ? "a batch without answers" : "";
    }
    if (!message.is_object() || message.value("jsonrpc", "") != "2.0")
        return "an answer is no message: " + message.dump();
    if (message.contains("result") == message.contains("error"))
        return "an answer is neither a result nor an error: " + message.dump();
    const bool isFailure = message.contains("error") && message["error"]["code"] == -32603;
    return isFailure ? "the tool itself failed: " + message.dump() : "";
}

} // namespace

std::string FindAgentFault(std::string_view bytes)
{
    const std::string answers = Serve(bytes);
    std::istringstream lines(answers);
    std::ptrdiff_t count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        const nlohmann::json message = nlohmann::json::parse(line, nullptr, false);
        if (std::string fault = FindMessageFault(message); !fault.empty())
            return fault;
    }
    if (count > std::count(bytes.begin(), bytes.end(), '\n') + 1)
        return "a line gets two answers";
    const auto sortLines = [](const std::string& text) {
        std::multiset<std::string> sorted;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);)
            sorted.insert(line);
        return sorted;
    };
    // What is cancelled may be answered already.
    if (bytes.find("cancelled") != std::string_view::npos)
        return "";
    return sortLines(answers) == sortLines(Serve(bytes)) ? "" : "the same lines get other answers";
}

} // namespace qe::test
