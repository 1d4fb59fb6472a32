#include "Toolkit/Model/ContentWriter.h"

#include "Toolkit/Model/DecisionNames.h"
#include "Toolkit/Model/ModelWords.h"
#include "Toolkit/Text/JsonText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>

namespace qe::tool {

using model::ENameKind;
using nlohmann::ordered_json;

namespace {

ordered_json CardinalityJson(const model::CardinalityRange& range)
{
    if (const auto word = CardinalityWord(range))
        return *word;
    return ordered_json::array({range.minimum, range.maximum});
}

ordered_json GovernorJson(const GovernorWords& words, std::int32_t value)
{
    if (value < 0 || static_cast<std::size_t>(value) >= words.size())
        return value;
    return std::string(words[static_cast<std::size_t>(value)]);
}

ordered_json FullId(const amd_id& id)
{
    if (id.domain == 0)
        return id.number;
    return ordered_json::array({id.domain, id.number});
}

/// The kinds of names among which the name in a reference of such an object is looked for, in that
/// order.
std::vector<ENameKind> NameKindsFor(std::int32_t fromClass, const amd_id& to)
{
    if (model::IsJoinClass(fromClass))
        return {model::NameKindOf(to.classCode)};
    return {ENameKind::Subject, ENameKind::Filter, ENameKind::Join, ENameKind::Container,
            ENameKind::Item};
}

} // namespace

ordered_json ContentWriter::Write()
{
    ordered_json json = ordered_json::object();
    json[keys::kVersion] = 1;
    json[keys::kLocale] = mModel->GetLocale(amd_id()).GetTag().ToStdString();
    if (mTool->writtenNames.dialect != nullptr)
        json[keys::kDialect] = std::string(mTool->writtenNames.dialect->word);
    if (!mTool->userClasses.empty())
        json[keys::kUserClasses] = mTool->userClasses;
    if (!mTool->histories.empty())
        json[keys::kHistory] = mTool->histories;
    WriteGovernors(json);
    WriteChildren(amd_id(), json);
    WriteQuery(json);
    if (!mTool->decisions.empty())
        json[keys::kDecisions] = ToJson(*mModel, mTool->decisions);
    if (!mTool->acceptedFindings.empty())
        json[keys::kAcceptedFindings] = ToJson(mTool->acceptedFindings);
    return json;
}

void ContentWriter::WriteGovernors(ordered_json& json) const
{
    const AQE_Governors& governors = mTool->governors;
    ordered_json words = ordered_json::object();
    if (governors.crossProductAllowed != 0)
        words[keys::kCrossProductAllowed] =
            GovernorJson(CrossProductWords(), governors.crossProductAllowed);
    if (governors.shortcutGrouping != 0)
        words[keys::kShortcutGrouping] =
            GovernorJson(ShortcutGroupingWords(), governors.shortcutGrouping);
    if (!words.empty())
        json[keys::kGovernors] = std::move(words);
}

void ContentWriter::WriteChildren(const amd_id& parent, ordered_json& json)
{
    std::map<std::int32_t, std::vector<amd_id>> children;
    for (const amd_id& id : mModel->GetChildren(parent)) {
        const bool isRelationship = id.classCode == IdClassRelationship136;
        children[isRelationship ? IdClassRelationship : id.classCode].push_back(id);
    }
    WriteList(keys::kSubjects, children[IdClassQuerySubject], json);
    WriteList(keys::kShortcuts, children[IdClassShortcut], json);
    WriteList(keys::kRelationships, children[IdClassRelationship], json);
    WriteList(keys::kRelationshipShortcuts, children[IdClassRelationshipShortcut], json);
    WriteList(keys::kFilters, children[IdClassFilter], json);
    WriteList(keys::kFolders, children[IdClassFolder], json);
    WriteList(keys::kNamespaces, children[model::IdClassNamespace], json);
}

void ContentWriter::WriteQuery(ordered_json& json)
{
    ordered_json query = ordered_json::object();
    const auto joins = mModel->GetIds(IdClassSpecJoin);
    const auto filters = mModel->GetIds(IdClassSpecFilter);
    WriteList(keys::kJoins, {joins.begin(), joins.end()}, query);
    WriteList(keys::kFilters, {filters.begin(), filters.end()}, query);
    if (!query.empty())
        json[keys::kQuery] = std::move(query);
}

void ContentWriter::WriteList(const char* key, const std::vector<amd_id>& ids, ordered_json& json)
{
    for (const amd_id& id : ids)
        ListAt(json, key).push_back(WriteObject(*mModel->Find(id)));
}

ordered_json ContentWriter::WriteObject(const Record& record)
{
    ordered_json json = ordered_json::object();
    json[keys::kName] = record.name;
    ordered_json id = WriteId(record.id);
    if (!id.is_null())
        json[keys::kId] = std::move(id);
    if (record.displayName != record.name)
        json[keys::kDisplayName] = record.displayName;
    const auto description = mTool->descriptions.find(record.id);
    if (description != mTool->descriptions.end())
        json[keys::kDescription] = description->second;
    if (!record.locale.empty())
        json[keys::kLocale] = record.locale;

    const std::int32_t classCode = record.id.classCode;
    if (model::IsContainerClass(classCode))
        WriteChildren(record.id, json);
    else if (classCode == IdClassQuerySubject)
        WriteSubject(record, json);
    else if (model::IsJoinClass(classCode))
        WriteJoin(record, json);
    else if (model::IsFilterClass(classCode))
        json[keys::kCondition] = record.text;
    if (classCode == IdClassShortcut) {
        json[keys::kTarget] = WriteReference(record, record.referenced);
        if (record.shortcutKind != 0)
            json[keys::kKind] = record.shortcutKind;
    }
    return json;
}

void ContentWriter::WriteSubject(const Record& record, ordered_json& json)
{
    if (!record.text.empty())
        json[keys::kTable] = record.text;
    if (const auto rows = mTool->rows.find(record.id); rows != mTool->rows.end())
        json[keys::kRows] = rows->second;
    for (const amd_id& id : mModel->GetChildren(record.id)) {
        ordered_json item = WriteObject(*mModel->Find(id));
        const bool isMereName = item.size() == 1;
        ListAt(json, keys::kItems)
            .push_back(isMereName ? ordered_json(item[keys::kName]) : std::move(item));
    }
    if (!record.keys.empty())
        json[keys::kKeys] = record.keys;
    WriteQuotedNames(record, json);
}

void ContentWriter::WriteQuotedNames(const Record& record, ordered_json& json) const
{
    const auto found = mTool->writtenNames.quoted.find(record.id);
    if (found == mTool->writtenNames.quoted.end())
        return;
    const model::QualifiedName parts =
        model::ParseQualifiedName(record.text.empty() ? model::ToText({record.name}) : record.text);
    NameSet all(parts.begin(), parts.end());
    for (const amd_id& id : mModel->GetChildren(record.id))
        all.insert(mModel->Find(id)->name);
    if (found->second == all)
        json[keys::kQuoted] = true;
    else
        json[keys::kQuoted] = found->second;
}

void ContentWriter::WriteJoin(const Record& record, ordered_json& json) const
{
    const bool isShortcut = record.id.classCode == IdClassRelationshipShortcut;
    if (record.id.classCode == IdClassRelationship136)
        json[keys::kClass] = IdClassRelationship136;
    if (isShortcut)
        json[keys::kTarget] = WriteReference(record, record.referenced);
    json[keys::kLeft] = WriteReference(record, record.left);
    if (!isShortcut)
        json[keys::kLeftCardinality] = CardinalityJson(record.leftCardinality);
    json[keys::kRight] = WriteReference(record, record.right);
    if (!isShortcut)
        json[keys::kRightCardinality] = CardinalityJson(record.rightCardinality);
    if (!record.text.empty())
        json[keys::kCondition] = record.text;
}

ordered_json ContentWriter::WriteReference(const Record& from, const amd_id& to) const
{
    const std::string& ownName = mModel->Find(to)->name;
    if (LeadsTo(from, to, {ownName}))
        return model::ToText({ownName});
    const model::QualifiedName name = mModel->GetQualifiedName(to);
    if (LeadsTo(from, to, name))
        return model::ToText(name);
    ordered_json json = ordered_json::object();
    json[keys::kClass] = to.classCode;
    json[keys::kId] = FullId(to);
    return json;
}

bool ContentWriter::LeadsTo(const Record& from, const amd_id& to,
                            const model::QualifiedName& name) const
{
    for (const ENameKind nameKind : NameKindsFor(from.id.classCode, to)) {
        std::vector<amd_id> found = mModel->FindByName(nameKind, name);
        found.erase(std::remove(found.begin(), found.end(), from.id), found.end());
        // A name that leads nowhere as it is written is looked for letter by letter, dots and all.
        if (found.empty() &&
            !mModel->FindByName(nameKind, model::QualifiedName{model::ToText(name)}).empty())
            return false;
        if (found.empty())
            continue;
        if (found.size() == 1)
            return found.front() == to;
        found.erase(std::remove_if(
                        found.begin(), found.end(),
                        [&](const amd_id& id) { return mModel->GetNamespace(id) != from.space; }),
                    found.end());
        return found.size() == 1 && found.front() == to;
    }
    return false;
}

ordered_json ContentWriter::WriteId(const amd_id& id)
{
    std::int32_t& last = mLastNumbers[id.classCode];
    if (id.domain != 0 || id.number != last + 1)
        return FullId(id);
    ++last;
    return nullptr;
}

} // namespace qe::tool
