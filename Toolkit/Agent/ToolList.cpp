#include "Toolkit/Agent/ToolList.h"

#include "Toolkit/Agent/ToolParts.h"

#include <utility>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;

const Json& GetToolDescriptions()
{
    static const Json descriptions = Json::parse(kToolDescriptions);
    return descriptions;
}

/// Returns the arguments of the tool, those that it shares with others first.
Json CollectProperties(const Json& tool)
{
    Json properties = Json::object();
    for (const Json& group : tool["takes"])
        properties.update(GetToolDescriptions()["arguments"][group.get<std::string>()]);
    properties.update(tool["properties"]);
    return properties;
}

Json MakeInputSchema(const Json& tool)
{
    Json schema{{"type", "object"},
                {"properties", CollectProperties(tool)},
                {"additionalProperties", false}};
    if (!tool["required"].empty())
        schema["required"] = tool["required"];
    return schema;
}

Json MakeOutputSchema(const Json& tool)
{
    Json schema{{"type", "object"}};
    schema.update(tool["output"]);
    Json definitions = Json::object();
    for (const Json& name : tool["uses"])
        definitions[name.get<std::string>()] =
            GetToolDescriptions()["definitions"][name.get<std::string>()];
    if (!definitions.empty())
        schema["$defs"] = std::move(definitions);
    return schema;
}

std::vector<std::string> ListKeys(const Json& object)
{
    std::vector<std::string> keys;
    for (const auto& [key, value] : object.items())
        keys.push_back(key);
    return keys;
}

} // namespace

Json ListTools(const Revision& revision)
{
    const bool isStructured = revision.structure == Revision::EStructure::Structured;
    Json list = Json::array();
    for (const Json& tool : GetToolDescriptions()["tools"]) {
        Json told{{"name", tool["name"]}};
        if (isStructured)
            told["title"] = tool["title"];
        told["description"] = tool["description"];
        told["inputSchema"] = MakeInputSchema(tool);
        if (isStructured)
            told["outputSchema"] = MakeOutputSchema(tool);
        told["annotations"] = {
            {"readOnlyHint", true}, {"idempotentHint", true}, {"openWorldHint", false}};
        list.push_back(std::move(told));
    }
    return list;
}

std::vector<std::string> ListToolNames()
{
    std::vector<std::string> names;
    for (const Json& tool : GetToolDescriptions()["tools"])
        names.push_back(tool["name"]);
    return names;
}

std::vector<std::string> ListToolArguments(std::string_view tool)
{
    for (const Json& described : GetToolDescriptions()["tools"]) {
        if (described["name"] == tool)
            return ListKeys(CollectProperties(described));
    }
    return {};
}

std::vector<std::string> ListArgumentGroup(std::string_view group)
{
    return ListKeys(GetToolDescriptions()["arguments"][std::string(group)]);
}

} // namespace qe::tool
