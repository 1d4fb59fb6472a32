#include "Toolkit/Model/ContentReader.h"

#include "Engine/Model/Names.h"
#include "Toolkit/Model/ModelWords.h"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {
namespace {

constexpr std::int32_t kFormatVersion = 1;

/// Returns the parts of the name of the query subject's table.
NameSet TableParts(const ContentObject& subject)
{
    const std::string& source = subject.details->options.source;
    const model::QualifiedName parts = model::ParseQualifiedName(source);
    if (source.empty())
        return {subject.name};
    return {parts.begin(), parts.end()};
}

} // namespace

std::string ModelContent::PointerTo(std::size_t position) const
{
    const ContentObject& object = objects[position];
    if (!object.pointer.empty())
        return object.pointer;
    return ChildPointer(ChildPointer(objects[object.parent].pointer, keys::kItems),
                        position - object.parent - 1);
}

ModelContent ContentReader::Read(const nlohmann::json& document)
{
    JsonObject top({&document, ""}, *mProblems);
    static_cast<void>(top.GetText(keys::kSchema));
    ReadVersion(top);
    const std::string locale = top.GetText(keys::kLocale);
    if (!locale.empty())
        mContent.locale = locale;
    ReadDialect(top.Find(keys::kDialect));
    mContent.userClasses = top.GetTexts(keys::kUserClasses).value_or(std::vector<std::string>());
    mContent.histories = top.GetTexts(keys::kHistory).value_or(std::vector<std::string>());
    ReadGovernors(top.Find(keys::kGovernors));
    ReadChildren(top, ContentObject::kNoParent);
    ReadQuery(top.Find(keys::kQuery));
    for (const PlacedJson& json : top.GetList(keys::kDecisions))
        ReadDecision(json);
    for (const PlacedJson& json : top.GetList(keys::kAcceptedFindings))
        mContent.acceptedFindings.push_back(ReadAcceptedFinding(json, *mProblems));
    top.RejectUnknownKeys();
    return std::move(mContent);
}

void ContentReader::ReadVersion(JsonObject& top)
{
    const auto version = top.GetNumber(keys::kVersion);
    if (version && *version != kFormatVersion)
        mProblems->Add(ChildPointer(top.GetPointer(), keys::kVersion),
                       "must be " + std::to_string(kFormatVersion) + ": " +
                           std::to_string(*version));
}

void ContentReader::ReadDialect(const PlacedJson& json)
{
    if (json.value == nullptr)
        return;
    if (const auto position = ReadWord(json, ListSqlDialectWords(), *mProblems))
        mContent.dialect = &GetSqlDialects()[*position];
}

void ContentReader::ReadGovernors(const PlacedJson& json)
{
    if (json.value == nullptr)
        return;
    JsonObject governors(json, *mProblems);
    ReadGovernor(governors.Find(keys::kCrossProductAllowed), CrossProductWords(),
                 mContent.governors.crossProductAllowed);
    ReadGovernor(governors.Find(keys::kShortcutGrouping), ShortcutGroupingWords(),
                 mContent.governors.shortcutGrouping);
    governors.RejectUnknownKeys();
}

void ContentReader::ReadGovernor(const PlacedJson& json, const GovernorWords& words,
                                 std::int32_t& value)
{
    if (json.value == nullptr)
        return;
    if (json.value->is_number())
        value = ReadNumber(json, *mProblems).value_or(value);
    else if (const auto position = ReadWord(json, words, *mProblems))
        value = static_cast<std::int32_t>(*position);
}

void ContentReader::ReadQuery(const PlacedJson& json)
{
    if (json.value == nullptr)
        return;
    JsonObject query(json, *mProblems);
    for (const PlacedJson& join : query.GetList(keys::kJoins))
        ReadJoin(join, IdClassSpecJoin, ContentObject::kNoParent);
    for (const PlacedJson& filter : query.GetList(keys::kFilters))
        ReadFilter(filter, IdClassSpecFilter, ContentObject::kNoParent);
    query.RejectUnknownKeys();
}

void ContentReader::ReadDecision(const PlacedJson& json)
{
    JsonObject object(json, *mProblems);
    mContent.decisions.push_back({.pointer = json.pointer,
                                  .subjects = ReadReferences(object, keys::kSubjects, *mProblems),
                                  .preferred = ReadReferences(object, keys::kPrefer, *mProblems),
                                  .avoided = ReadReferences(object, keys::kAvoid, *mProblems),
                                  .reason = object.GetText(keys::kReason)});
    object.RejectUnknownKeys();
    const ContentDecision& decision = mContent.decisions.back();
    const bool isReported = mProblems->IsReported(json.pointer) ||
                            mProblems->IsReported(ChildPointer(json.pointer, keys::kPrefer)) ||
                            mProblems->IsReported(ChildPointer(json.pointer, keys::kAvoid));
    if (decision.preferred.empty() && decision.avoided.empty() && !isReported)
        mProblems->Add(json.pointer, "must prefer or avoid a join");
}

void ContentReader::ReadChildren(JsonObject& parent, std::size_t position)
{
    for (const PlacedJson& json : parent.GetList(keys::kSubjects))
        ReadSubject(json, position);
    for (const PlacedJson& json : parent.GetList(keys::kShortcuts))
        ReadShortcut(json, position);
    for (const PlacedJson& json : parent.GetList(keys::kRelationships))
        ReadRelationship(json, position);
    for (const PlacedJson& json : parent.GetList(keys::kRelationshipShortcuts))
        ReadRelationshipShortcut(json, position);
    for (const PlacedJson& json : parent.GetList(keys::kFilters))
        ReadFilter(json, IdClassFilter, position);
    for (const PlacedJson& json : parent.GetList(keys::kFolders))
        ReadContainer(json, IdClassFolder, position);
    for (const PlacedJson& json : parent.GetList(keys::kNamespaces))
        ReadContainer(json, model::IdClassNamespace, position);
}

void ContentReader::ReadContainer(const PlacedJson& json, std::int32_t classCode,
                                  std::size_t parent)
{
    JsonObject object(json, *mProblems);
    const std::size_t position = Add(object, classCode, parent);
    ReadChildren(object, position);
    object.RejectUnknownKeys();
}

void ContentReader::ReadSubject(const PlacedJson& json, std::size_t parent)
{
    if (ReadPlainName(json, IdClassQuerySubject, parent))
        return;
    JsonObject object(json, *mProblems);
    const std::size_t position = Add(object, IdClassQuerySubject, parent);
    ContentDetails& details = *mContent.objects[position].details;
    details.options.source = object.GetText(keys::kTable);
    const PlacedJson quoted = object.Find(keys::kQuoted);
    details.rows = object.GetCount(keys::kRows);
    const std::vector<PlacedJson> keys = object.GetList(keys::kKeys);
    ReadItems(object.Find(keys::kItems), position);
    for (const PlacedJson& key : keys)
        ReadKey(key, position);
    ReadQuotedNames(quoted, position);
    object.RejectUnknownKeys();
}

void ContentReader::ReadItems(const PlacedJson& json, std::size_t subject)
{
    if (json.value == nullptr)
        return;
    if (!json.value->is_array()) {
        RejectType(json, "a list", *mProblems);
        return;
    }
    std::size_t place = 0;
    for (const nlohmann::json& element : *json.value) {
        const std::size_t here = place++;
        if (const std::string* const name = FindText(element)) {
            AddPlainName(IdClassQueryItem, subject).name = *name;
            continue;
        }
        const PlacedJson placed{&element, ChildPointer(json.pointer, here)};
        if (ReadPlainName(placed, IdClassQueryItem, subject))
            continue;
        JsonObject item(placed, *mProblems);
        Add(item, IdClassQueryItem, subject);
        item.RejectUnknownKeys();
    }
}

void ContentReader::ReadQuotedNames(const PlacedJson& json, std::size_t subject)
{
    if (json.value == nullptr)
        return;
    ContentObject& object = mContent.objects[subject];
    NameSet names = TableParts(object);
    for (std::size_t i = subject + 1; i < mContent.objects.size(); ++i)
        names.insert(mContent.objects[i].name);
    object.details->quoted = ReadNameSet(json, names, *mProblems);
}

void ContentReader::ReadKey(const PlacedJson& json, std::size_t subject)
{
    std::vector<std::string_view> items;
    for (std::size_t i = subject + 1; i < mContent.objects.size(); ++i)
        items.emplace_back(mContent.objects[i].name);
    std::vector<std::string> key;
    for (const PlacedJson& element : ReadList(json, *mProblems)) {
        const std::optional<std::string> name = ReadText(element, *mProblems);
        if (!name)
            continue;
        if (std::find(items.begin(), items.end(), *name) == items.end())
            mProblems->Add(element.pointer, "is no item of the query subject: \"" + *name + '"',
                           model::NearestNames(*name, items));
        key.push_back(*name);
    }
    if (json.value->is_array() && json.value->empty())
        mProblems->Add(json.pointer, "must name an item");
    mContent.objects[subject].details->options.keys.push_back(std::move(key));
}

void ContentReader::ReadShortcut(const PlacedJson& json, std::size_t parent)
{
    JsonObject object(json, *mProblems);
    ContentLinks& shortcut = AddLinked(object, IdClassShortcut, parent);
    shortcut.target = ReadReference(object, keys::kTarget, *mProblems);
    shortcut.kind = object.GetNumber(keys::kKind).value_or(0);
    object.RejectUnknownKeys();
}

void ContentReader::ReadRelationship(const PlacedJson& json, std::size_t parent)
{
    std::int32_t classCode = IdClassRelationship;
    if (json.value->is_object() && json.value->contains(keys::kClass)) {
        const PlacedJson given{&(*json.value)[keys::kClass],
                               ChildPointer(json.pointer, keys::kClass)};
        classCode = ReadNumber(given, *mProblems).value_or(IdClassRelationship);
        if (classCode != IdClassRelationship && classCode != IdClassRelationship136) {
            mProblems->Add(given.pointer,
                           "must be a class of relationships (102 or 136): " + given.value->dump());
            classCode = IdClassRelationship;
        }
    }
    ReadJoin(json, classCode, parent);
}

void ContentReader::ReadJoin(const PlacedJson& json, std::int32_t classCode, std::size_t parent)
{
    JsonObject object(json, *mProblems);
    if (classCode != IdClassSpecJoin)
        static_cast<void>(object.Find(keys::kClass));
    ContentLinks& join = AddLinked(object, classCode, parent);
    join.left.subject = ReadReference(object, keys::kLeft, *mProblems);
    join.left.cardinality = ReadCardinality(object, keys::kLeftCardinality, *mProblems);
    join.right.subject = ReadReference(object, keys::kRight, *mProblems);
    join.right.cardinality = ReadCardinality(object, keys::kRightCardinality, *mProblems);
    join.condition = object.GetText(keys::kCondition);
    object.RejectUnknownKeys();
}

void ContentReader::ReadRelationshipShortcut(const PlacedJson& json, std::size_t parent)
{
    JsonObject object(json, *mProblems);
    ContentLinks& shortcut = AddLinked(object, IdClassRelationshipShortcut, parent);
    shortcut.target = ReadReference(object, keys::kTarget, *mProblems);
    shortcut.left.subject = ReadReference(object, keys::kLeft, *mProblems);
    shortcut.right.subject = ReadReference(object, keys::kRight, *mProblems);
    object.RejectUnknownKeys();
}

void ContentReader::ReadFilter(const PlacedJson& json, std::int32_t classCode, std::size_t parent)
{
    JsonObject object(json, *mProblems);
    ContentLinks& filter = AddLinked(object, classCode, parent);
    filter.condition = object.GetText(keys::kCondition, EPresence::Required);
    object.RejectUnknownKeys();
}

bool ContentReader::ReadPlainName(const PlacedJson& json, std::int32_t classCode,
                                  std::size_t parent)
{
    if (!json.value->is_string())
        return false;
    ContentObject& object = AddPlainName(classCode, parent);
    object.pointer = json.pointer;
    object.name = ReadText(json, *mProblems).value_or("");
    return true;
}

ContentObject& ContentReader::AddPlainName(std::int32_t classCode, std::size_t parent)
{
    ContentObject& object = mContent.objects.emplace_back();
    object.classCode = classCode;
    object.isPlainName = true;
    object.parent = parent;
    return object;
}

void ContentReader::RecordId(ContentObject& object)
{
    const auto [owner, isNew] = mIdOwners.emplace(object.details->options.id, object.pointer);
    if (isNew)
        return;
    mProblems->Add(ChildPointer(object.pointer, keys::kId),
                   "is the id of another object of this kind: " + owner->second);
    object.details->options.id = {};
}

std::size_t ContentReader::Add(JsonObject& json, std::int32_t classCode, std::size_t parent)
{
    ContentObject& object = mContent.objects.emplace_back();
    object.classCode = classCode;
    object.pointer = json.GetPointer();
    object.parent = parent;
    object.details = std::make_unique<ContentDetails>();
    ContentDetails& details = *object.details;
    object.name = json.GetText(keys::kName, EPresence::Required);
    details.options.id = ReadId(json.Find(keys::kId), classCode, *mProblems);
    details.options.displayName = json.GetText(keys::kDisplayName);
    details.description = json.GetText(keys::kDescription);
    details.options.locale = json.GetText(keys::kLocale);
    if (details.options.id != amd_id())
        RecordId(object);
    return mContent.objects.size() - 1;
}

ContentLinks& ContentReader::AddLinked(JsonObject& json, std::int32_t classCode, std::size_t parent)
{
    ContentObject& object = mContent.objects[Add(json, classCode, parent)];
    object.links = std::make_unique<ContentLinks>();
    return *object.links;
}

} // namespace qe::tool
