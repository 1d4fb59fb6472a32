#include "Engine/Model/Names.h"
#include "Toolkit/Export/ExportWriters.h"
#include "Toolkit/Export/ExportedModel.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/JsonText.h"

#include <nlohmann/json.hpp>

namespace qe::tool {

namespace {

using nlohmann::ordered_json;

const char* CardinalityWordOf(const ExportedEnd& end)
{
    if (end.isMany)
        return end.isOptional ? "zero_or_more" : "one_or_more";
    return end.isOptional ? "zero_or_one" : "exactly_one";
}

ordered_json ConstraintJson(const ExportedSubject& subject, std::size_t key)
{
    const std::string type = key == 0 ? "PRIMARY KEY" : "UNIQUE";
    ordered_json json = ordered_json::object();
    json["name"] = subject.name + " key " + std::to_string(key + 1);
    json["type"] = type;
    json["def"] = type + " (" + JoinTexts(subject.keys[key]) + ")";
    json["table"] = subject.name;
    json["columns"] = subject.keys[key];
    return json;
}

ordered_json TableJson(const ExportedSubject& subject)
{
    ordered_json json = ordered_json::object();
    json["name"] = subject.name;
    json["type"] = "table";
    if (!subject.description.empty())
        json["comment"] = subject.description;
    json["columns"] = ordered_json::array();
    for (const auto& [name, description] : subject.columns) {
        ordered_json column{{"name", name}, {"type", ""}, {"nullable", true}};
        if (!description.empty())
            column["comment"] = description;
        json["columns"].push_back(std::move(column));
    }
    for (std::size_t key = 0; key < subject.keys.size(); ++key)
        ListAt(json, "constraints").push_back(ConstraintJson(subject, key));
    return json;
}

ordered_json RelationJson(const ExportedModel& model, const ExportedJoin& join)
{
    ordered_json json = ordered_json::object();
    json["table"] = model.subjects[join.left.subject].name;
    json["columns"] = join.left.columns;
    json["cardinality"] = CardinalityWordOf(join.left);
    json["parent_table"] = model.subjects[join.right.subject].name;
    json["parent_columns"] = join.right.columns;
    json["parent_cardinality"] = CardinalityWordOf(join.right);
    json["def"] = join.name;
    json["virtual"] = true;
    return json;
}

} // namespace

std::string WriteTbls(const ToolModel& model, LeftOut& leftOut)
{
    const ExportedModel exported = CollectModel(model, leftOut);
    ordered_json document = ordered_json::object();
    document["name"] = exported.name;
    document["tables"] = ordered_json::array();
    for (const ExportedSubject& subject : exported.subjects) {
        document["tables"].push_back(TableJson(subject));
        if (model::ParseQualifiedName(subject.name) != subject.source)
            leftOut.Add("tables that are not called like their subject",
                        model::ToText(subject.source));
    }
    document["relations"] = ordered_json::array();
    for (const ExportedJoin& join : TakePlainJoins(exported, leftOut))
        document["relations"].push_back(RelationJson(exported, join));
    document["driver"] = {{"name", "qerefine"}};
    return FormatJson(document);
}

} // namespace qe::tool
