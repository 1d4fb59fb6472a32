#include "Toolkit/Model/ContentReader.h"

#include "Engine/Model/NearestNames.h"
#include "Toolkit/Model/ModelKeys.h"
#include "Toolkit/Model/ModelWords.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace qe::tool {

namespace {

constexpr std::int32_t FormatVersion = 1;

} // namespace

ModelContent ContentReader::Read(const nlohmann::json& document)
{
    JsonObject top({&document, ""}, *mProblems);
    static_cast<void>(top.GetText(keys::Schema));
    ReadVersion(top);
    const std::string locale = top.GetText(keys::Locale);
    if (!locale.empty())
        mContent.locale = locale;
    for (const PlacedJson& element : top.GetList(keys::UserClasses)) {
        if (const auto name = ReadText(element, *mProblems))
            mContent.userClasses.push_back(*name);
    }
    ReadGovernors(top.Find(keys::Governors));
    ReadHeld(top, ContentObject::NoHolder);
    ReadQuery(top.Find(keys::Query));
    top.RefuseOtherKeys();
    return std::move(mContent);
}

void ContentReader::ReadVersion(JsonObject& top)
{
    const auto version = top.GetNumber(keys::Version);
    if (version && *version != FormatVersion)
        mProblems->Add(ChildPointer(top.GetPointer(), keys::Version),
                       "must be " + std::to_string(FormatVersion) + ": " +
                           std::to_string(*version));
}

void ContentReader::ReadGovernors(const PlacedJson& json)
{
    if (json.value == nullptr)
        return;
    JsonObject governors(json, *mProblems);
    ReadGovernor(governors.Find(keys::CrossProductAllowed), CrossProductWords(),
                 mContent.governors.crossProductAllowed);
    ReadGovernor(governors.Find(keys::ShortcutGrouping), ShortcutGroupingWords(),
                 mContent.governors.shortcutGrouping);
    governors.RefuseOtherKeys();
}

void ContentReader::ReadGovernor(const PlacedJson& json, const std::vector<std::string_view>& words,
                                 std::int32_t& value)
{
    if (json.value == nullptr)
        return;
    if (json.value->is_number()) {
        value = ReadNumber(json, *mProblems).value_or(value);
        return;
    }
    if (const auto word = ReadText(json, *mProblems)) {
        if (const auto meaning = ParseGovernor(words, *word))
            value = *meaning;
        else
            mProblems->Add(json.pointer, "is no value of this governor: \"" + *word + '"',
                           {words.begin(), words.end()});
    }
}

void ContentReader::ReadQuery(const PlacedJson& json)
{
    if (json.value == nullptr)
        return;
    JsonObject query(json, *mProblems);
    for (const PlacedJson& join : query.GetList(keys::Joins))
        ReadJoin(join, IdClassSpecJoin, ContentObject::NoHolder);
    for (const PlacedJson& filter : query.GetList(keys::Filters))
        ReadFilter(filter, IdClassSpecFilter, ContentObject::NoHolder);
    query.RefuseOtherKeys();
}

void ContentReader::ReadHeld(JsonObject& holder, std::size_t position)
{
    for (const PlacedJson& json : holder.GetList(keys::Subjects))
        ReadSubject(json, position);
    for (const PlacedJson& json : holder.GetList(keys::Shortcuts))
        ReadShortcut(json, position);
    for (const PlacedJson& json : holder.GetList(keys::Relationships))
        ReadRelationship(json, position);
    for (const PlacedJson& json : holder.GetList(keys::RelationshipShortcuts))
        ReadRelationshipShortcut(json, position);
    for (const PlacedJson& json : holder.GetList(keys::Filters))
        ReadFilter(json, IdClassFilter, position);
    for (const PlacedJson& json : holder.GetList(keys::Folders))
        ReadContainer(json, IdClassFolder, position);
    for (const PlacedJson& json : holder.GetList(keys::Namespaces))
        ReadContainer(json, model::IdClassNamespace, position);
}

void ContentReader::ReadContainer(const PlacedJson& json, std::int32_t classCode,
                                  std::size_t holder)
{
    JsonObject object(json, *mProblems);
    const std::size_t position = Add(object, classCode, holder);
    ReadHeld(object, position);
    object.RefuseOtherKeys();
}

void ContentReader::ReadSubject(const PlacedJson& json, std::size_t holder)
{
    if (ReadPlainName(json, IdClassQuerySubject, holder))
        return;
    JsonObject object(json, *mProblems);
    const std::size_t position = Add(object, IdClassQuerySubject, holder);
    mContent.objects[position].options.source = object.GetText(keys::Table);
    for (const PlacedJson& element : object.GetList(keys::Items)) {
        if (ReadPlainName(element, IdClassQueryItem, position))
            continue;
        JsonObject item(element, *mProblems);
        Add(item, IdClassQueryItem, position);
        item.RefuseOtherKeys();
    }
    object.RefuseOtherKeys();
}

void ContentReader::ReadShortcut(const PlacedJson& json, std::size_t holder)
{
    JsonObject object(json, *mProblems);
    ContentObject& shortcut = mContent.objects[Add(object, IdClassShortcut, holder)];
    shortcut.target = ReadReference(object, keys::Target);
    shortcut.kind = object.GetNumber(keys::Kind).value_or(0);
    object.RefuseOtherKeys();
}

void ContentReader::ReadRelationship(const PlacedJson& json, std::size_t holder)
{
    std::int32_t classCode = IdClassRelationship;
    if (json.value->is_object() && json.value->contains(keys::Class)) {
        const PlacedJson given{&(*json.value)[keys::Class],
                               ChildPointer(json.pointer, keys::Class)};
        classCode = ReadNumber(given, *mProblems).value_or(IdClassRelationship);
        if (classCode != IdClassRelationship && classCode != IdClassRelationship136) {
            mProblems->Add(given.pointer,
                           "is no class of relationships (102 or 136): " + given.value->dump());
            classCode = IdClassRelationship;
        }
    }
    ReadJoin(json, classCode, holder);
}

void ContentReader::ReadJoin(const PlacedJson& json, std::int32_t classCode, std::size_t holder)
{
    JsonObject object(json, *mProblems);
    if (classCode != IdClassSpecJoin)
        static_cast<void>(object.Find(keys::Class));
    ContentObject& join = mContent.objects[Add(object, classCode, holder)];
    join.left.subject = ReadReference(object, keys::Left);
    join.left.cardinality = ReadCardinality(object, keys::LeftCardinality);
    join.right.subject = ReadReference(object, keys::Right);
    join.right.cardinality = ReadCardinality(object, keys::RightCardinality);
    join.condition = object.GetText(keys::Condition);
    object.RefuseOtherKeys();
}

void ContentReader::ReadRelationshipShortcut(const PlacedJson& json, std::size_t holder)
{
    JsonObject object(json, *mProblems);
    ContentObject& shortcut = mContent.objects[Add(object, IdClassRelationshipShortcut, holder)];
    shortcut.target = ReadReference(object, keys::Target);
    shortcut.left.subject = ReadReference(object, keys::Left);
    shortcut.right.subject = ReadReference(object, keys::Right);
    object.RefuseOtherKeys();
}

void ContentReader::ReadFilter(const PlacedJson& json, std::int32_t classCode, std::size_t holder)
{
    JsonObject object(json, *mProblems);
    ContentObject& filter = mContent.objects[Add(object, classCode, holder)];
    filter.condition = object.GetText(keys::Condition, EPresence::Required);
    object.RefuseOtherKeys();
}

bool ContentReader::ReadPlainName(const PlacedJson& json, std::int32_t classCode,
                                  std::size_t holder)
{
    if (!json.value->is_string())
        return false;
    ContentObject object;
    object.classCode = classCode;
    object.pointer = json.pointer;
    object.namePointer = json.pointer;
    object.holder = holder;
    object.name = ReadText(json, *mProblems).value_or("");
    mContent.objects.push_back(std::move(object));
    return true;
}

std::size_t ContentReader::Add(JsonObject& json, std::int32_t classCode, std::size_t holder)
{
    ContentObject object;
    object.classCode = classCode;
    object.pointer = json.GetPointer();
    object.namePointer = ChildPointer(object.pointer, keys::Name);
    object.holder = holder;
    object.name = json.GetText(keys::Name, EPresence::Required);
    object.options.id = ReadId(json.Find(keys::Id), classCode);
    object.options.displayName = json.GetText(keys::DisplayName);
    object.options.locale = json.GetText(keys::Locale);
    const auto [owner, isNew] = mIdOwners.emplace(object.options.id, object.pointer);
    if (object.options.id != amd_id() && !isNew) {
        mProblems->Add(ChildPointer(object.pointer, keys::Id),
                       "is the id of another object of this kind: " + owner->second);
        object.options.id = {};
    }
    mContent.objects.push_back(std::move(object));
    return mContent.objects.size() - 1;
}

model::Reference ContentReader::ReadReference(JsonObject& json, const char* key)
{
    const PlacedJson found = json.Find(key, EPresence::Required);
    if (found.value == nullptr)
        return {};
    if (found.value->is_object())
        return ReadIdReference(found);
    if (!found.value->is_string()) {
        RefuseType(found, "a name or an object with class and id", *mProblems);
        return {};
    }
    return ReadText(found, *mProblems).value_or("");
}

model::Reference ContentReader::ReadIdReference(const PlacedJson& json)
{
    JsonObject object(json, *mProblems);
    const auto classCode = object.GetNumber(keys::Class);
    static_cast<void>(object.Find(keys::Class, EPresence::Required));
    const PlacedJson id = object.Find(keys::Id, EPresence::Required);
    object.RefuseOtherKeys();
    const amd_id read = ReadId(id, classCode.value_or(0));
    if (!classCode || read == amd_id()) {
        mProblems->Settle(json.pointer);
        return {};
    }
    return read;
}

model::CardinalityRange ContentReader::ReadCardinality(JsonObject& json, const char* key)
{
    const PlacedJson found = json.Find(key, EPresence::Required);
    model::CardinalityRange range;
    if (found.value == nullptr)
        return range;
    if (found.value->is_string()) {
        const std::string word = ReadText(found, *mProblems).value_or("");
        if (const auto known = ParseCardinality(word))
            return *known;
        if (!mProblems->IsSettled(found.pointer))
            mProblems->Add(found.pointer, "is no cardinality: \"" + word + '"',
                           model::NearestNames(word, CardinalityWords(), 4));
    } else if (!ReadPair(found, range.minimum, range.maximum)) {
        if (!mProblems->IsSettled(found.pointer))
            RefuseType(found, "a cardinality such as \"0..n\" or a list of two numbers",
                       *mProblems);
    }
    return range;
}

amd_id ContentReader::ReadId(const PlacedJson& json, std::int32_t classCode)
{
    if (json.value == nullptr)
        return {};
    amd_id id(0, classCode, 0);
    const bool isPair = json.value->is_array();
    if (isPair ? !ReadPair(json, id.domain, id.number) : !json.value->is_number()) {
        if (!mProblems->IsSettled(json.pointer))
            RefuseType(json, "a number or a list of domain and number", *mProblems);
        return {};
    }
    if (!isPair) {
        const auto number = ReadNumber(json, *mProblems);
        if (!number)
            return {};
        id.number = *number;
    }
    if (id.number != 0)
        return id;
    mProblems->Add(json.pointer, "must not be 0");
    return {};
}

bool ContentReader::ReadPair(const PlacedJson& json, std::int32_t& first, std::int32_t& second)
{
    if (!json.value->is_array() || json.value->size() != 2)
        return false;
    const auto read = [&](std::size_t index) {
        return ReadNumber({&(*json.value)[index], ChildPointer(json.pointer, index)}, *mProblems);
    };
    const auto left = read(0);
    const auto right = read(1);
    if (!left || !right) {
        mProblems->Settle(json.pointer);
        return false;
    }
    first = *left;
    second = *right;
    return true;
}

} // namespace qe::tool
