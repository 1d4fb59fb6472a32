#include "Toolkit/Export/ExportWriters.h"
#include "Toolkit/Export/ExportedModel.h"
#include "Toolkit/Import/Formats/ColumnText.h"
#include "Toolkit/Text/JsonText.h"

#include <nlohmann/json.hpp>

namespace qe::tool {

namespace {

using nlohmann::ordered_json;

constexpr const char* kVersion = "0.2.0.dev0";

ordered_json FieldJson(const std::string& name, const std::string& description)
{
    ordered_json json = ordered_json::object();
    json["name"] = name;
    json["expression"] = {
        {"dialects",
         ordered_json::array({{{"dialect", "ANSI_SQL"}, {"expression", WriteSqlName({name})}}})}};
    if (!description.empty())
        json["description"] = description;
    return json;
}

ordered_json DatasetJson(const ExportedSubject& subject)
{
    ordered_json json = ordered_json::object();
    json["name"] = subject.name;
    json["source"] = WriteSqlName(subject.source);
    if (!subject.keys.empty())
        json["primary_key"] = subject.keys.front();
    for (std::size_t i = 1; i < subject.keys.size(); ++i)
        ListAt(json, "unique_keys").push_back(subject.keys[i]);
    if (!subject.description.empty())
        json["description"] = subject.description;
    for (const auto& [name, description] : subject.columns)
        ListAt(json, "fields").push_back(FieldJson(name, description));
    return json;
}

ordered_json RelationshipJson(const ExportedModel& model, const ExportedJoin& join)
{
    ordered_json json = ordered_json::object();
    json["name"] = join.name;
    json["from"] = model.subjects[join.left.subject].name;
    json["to"] = model.subjects[join.right.subject].name;
    json["from_columns"] = join.left.columns;
    json["to_columns"] = join.right.columns;
    return json;
}

/// Tells where readers conclude another cardinality from the keys than the model has.
void NoteCardinality(const ExportedModel& model, const ExportedJoin& join, LeftOut& leftOut)
{
    const bool isRightOne = HasKeyWithin(model.subjects[join.right.subject], join.right.columns);
    const bool isLeftOne =
        isRightOne && HasKeyWithin(model.subjects[join.left.subject], join.left.columns);
    if (join.left.isMany == isLeftOne || join.right.isMany == isRightOne)
        leftOut.Add("cardinalities that do not follow from keys", join.name);
    if (!join.left.isOptional || !join.right.isOptional)
        leftOut.Add("words that each row has a partner", join.name);
}

} // namespace

std::string WriteOssie(const ToolModel& model, LeftOut& leftOut)
{
    const ExportedModel exported = CollectModel(model, leftOut);
    ordered_json written = ordered_json::object();
    written["name"] = exported.name;
    written["datasets"] = ordered_json::array();
    for (const ExportedSubject& subject : exported.subjects)
        written["datasets"].push_back(DatasetJson(subject));
    for (const ExportedJoin& join : TakePlainJoins(exported, leftOut)) {
        NoteCardinality(exported, join, leftOut);
        ListAt(written, "relationships").push_back(RelationshipJson(exported, join));
    }
    ordered_json document = ordered_json::object();
    document["version"] = kVersion;
    document["semantic_model"] = ordered_json::array({std::move(written)});
    return FormatJson(document);
}

} // namespace qe::tool
