#include "Toolkit/Import/Formats/CubeCatalog.h"

#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;

/// How many names a message shows.
constexpr std::size_t kShownNames = 5;

/// So many cubes may extend each other in a row, and all may take over so many members.
constexpr std::size_t kMaximumHeritage = 64;
constexpr std::size_t kMaximumInherited = 1'000'000;

/// Whether many rows of the cube that states a join, and of its target, may meet one of the other.
using Relationship = std::pair<bool, bool>;

const JsonWords<Relationship>& ListRelationships()
{
    static const JsonWords<Relationship> kWords{
        {"one_to_one", {false, false}}, {"one_to_many", {false, true}},
        {"many_to_one", {true, false}}, {"belongs_to", {true, false}},
        {"has_many", {false, true}},    {"has_one", {false, false}},
        {"oneToOne", {false, false}},   {"oneToMany", {false, true}},
        {"manyToOne", {true, false}},   {"belongsTo", {true, false}},
        {"hasMany", {false, true}},     {"hasOne", {false, false}}};
    return kWords;
}

/// A key of the format in the two spellings that it may have.
struct Spellings
{
    std::string_view snake{};
    std::string_view camel{};
};

/// Returns the spelling in which the object has the key.
std::string_view Spell(JsonObject& object, const Spellings& key)
{
    const bool isCamel = object.Find(key.camel).value != nullptr;
    return isCamel && object.Find(key.snake).value == nullptr ? key.camel : key.snake;
}

/// YAML takes a text without quotes for a number where it can.
std::string GetSql(JsonObject& object, const char* key, JsonProblems& problems)
{
    const PlacedJson sql = object.Find(key);
    if (sql.value == nullptr)
        return {};
    return sql.value->is_number() ? sql.value->dump() : ReadText(sql, problems).value_or("");
}

void ReadDimension(JsonProblems& problems, const PlacedJson& placed, Cube& cube)
{
    JsonObject object(placed, problems);
    CubeDimension dimension{
        .name = object.GetText("name", EPresence::Required),
        .sql = GetSql(object, "sql", problems),
        .description = object.GetText("description"),
        .isKey = object.GetBoolean(Spell(object, {.snake = "primary_key", .camel = "primaryKey"}))
                     .value_or(false)};
    object.RejectMisspeltKeys();
    cube.dimensions.push_back(std::move(dimension));
}

void ReadJoin(SourceDocument& document, const PlacedJson& placed, Cube& cube)
{
    JsonProblems& problems = document.problems;
    JsonObject object(placed, problems);
    CubeJoin join{.target = object.GetText("name", EPresence::Required),
                  .sql = object.GetText("sql", EPresence::Required),
                  .document = &document,
                  .pointer = placed.pointer};
    const auto relationship = object.GetChoice("relationship", ListRelationships());
    if (relationship) {
        join.isLeftMany = relationship->first;
        join.isRightMany = relationship->second;
    } else if (!problems.IsReported(ChildPointer(placed.pointer, "relationship"))) {
        static_cast<void>(object.Find("relationship", EPresence::Required));
    }
    object.RejectMisspeltKeys();
    cube.joins.push_back(std::move(join));
}

} // namespace

CubeCatalog::CubeCatalog(std::span<SourceDocument> documents, LeftOut& leftOut) : mLeftOut(leftOut)
{
    for (SourceDocument& document : documents)
        ReadDocument(document);
    for (std::size_t i = 0; i < mCubes.size(); ++i)
        Inherit(i);
}

void CubeCatalog::ReadDocument(SourceDocument& document)
{
    mNeedsCode = mNeedsCode || !document.templates.empty();
    if (document.syntax == ESyntax::JavaScript) {
        TellCode(document);
        return;
    }
    JsonObject top(document.Top(), document.problems);
    for (const PlacedJson& cube : ReadEntries(top, "cubes", document.problems))
        ReadCube(document, cube);
    top.Ignore({"views"});
    top.RejectMisspeltKeys();
}

/// Tells what a program would make: "cube(`orders`".
void CubeCatalog::TellCode(const SourceDocument& document)
{
    mNeedsCode = true;
    std::string_view rest = *document.text;
    for (std::size_t line = 1; !rest.empty(); ++line) {
        const std::string_view text = rest.substr(0, rest.find('\n'));
        for (const std::string_view call : {"cube(", "view("}) {
            if (text.starts_with(call) && text.size() > call.size() + 1) {
                const char quote = text[call.size()];
                const std::string_view name = text.substr(call.size() + 1);
                mLeftOut.Add("cubes and views in JavaScript, which needs code",
                             std::string(name.substr(0, name.find(quote))) + " (" + document.name +
                                 ':' + std::to_string(line) + ')');
            }
        }
        rest.remove_prefix(std::min(text.size() + 1, rest.size()));
    }
}

void CubeCatalog::ReadCube(SourceDocument& document, const PlacedJson& placed)
{
    JsonProblems& problems = document.problems;
    JsonObject object(placed, problems);
    Cube cube{.name = object.GetText("name", EPresence::Required),
              .description = object.GetText("description"),
              .extends = object.GetText("extends"),
              .table = object.GetText(Spell(object, {.snake = "sql_table", .camel = "sqlTable"})),
              .query = object.GetText("sql"),
              .document = &document,
              .pointer = placed.pointer};
    for (const PlacedJson& dimension : ReadEntries(object, "dimensions", problems))
        ReadDimension(problems, dimension, cube);
    for (const PlacedJson& join : ReadEntries(object, "joins", problems))
        ReadJoin(document, join, cube);
    for (const PlacedJson& measure : ReadEntries(object, "measures", problems))
        mLeftOut.Add("measures", JsonObject(measure, problems).GetText("name"));
    object.RejectMisspeltKeys();
    if (!mIndex.Add(cube.name, mCubes.size()))
        problems.Add(ChildPointer(placed.pointer, "name"),
                     "there is a cube of that name already: \"" + cube.name + '"');
    mCubes.push_back(std::move(cube));
}

/// Returns the cube and those that it extends, one after the other.
std::vector<std::size_t> CubeCatalog::FollowChain(std::size_t position)
{
    Names path;
    std::vector<std::size_t> chain{position};
    while (!mCubes[chain.back()].extends.empty()) {
        const Cube& cube = mCubes[chain.back()];
        const std::string pointer = ChildPointer(cube.pointer, "extends");
        path.push_back(cube.extends);
        const auto parent = Find(cube.extends, *cube.document, pointer);
        if (!parent)
            break;
        if (std::find(chain.begin(), chain.end(), *parent) != chain.end()) {
            cube.document->problems.Add(pointer, "leads back to a cube that extends this one: " +
                                                     JoinFirstTexts(path, kShownNames));
            break;
        }
        if (chain.size() == kMaximumHeritage) {
            cube.document->problems.Add(
                pointer,
                "is one of more than " + std::to_string(kMaximumHeritage) +
                    " cubes in a row that extend each other: " + JoinFirstTexts(path, kShownNames));
            break;
        }
        chain.push_back(*parent);
    }
    return chain;
}

/// Takes over what the cubes have that this one extends.
void CubeCatalog::Inherit(std::size_t position)
{
    for (std::vector<std::size_t> chain = FollowChain(position); chain.size() > 1; chain.pop_back())
        TakeOver(mCubes[chain.back()], mCubes[chain[chain.size() - 2]]);
}

void CubeCatalog::TakeOver(const Cube& from, Cube& into)
{
    into.extends.clear();
    if (into.table.empty() && into.query.empty()) {
        into.table = from.table;
        into.query = from.query;
    }
    mInherited += from.dimensions.size() + from.joins.size();
    if (mInherited > kMaximumInherited)
        throw InputError({{into.document->problems.FindPlace(into.pointer),
                           "cubes take over more than " + std::to_string(kMaximumInherited) +
                               " members of each other"}});
    std::set<std::string> own;
    for (const CubeDimension& dimension : into.dimensions)
        own.insert(dimension.name);
    for (const CubeDimension& dimension : from.dimensions)
        if (!own.contains(dimension.name))
            into.dimensions.push_back(dimension);
    own.clear();
    for (const CubeJoin& join : into.joins)
        own.insert(join.target);
    for (const CubeJoin& join : from.joins)
        if (!own.contains(join.target))
            into.joins.push_back(join);
}

std::optional<std::size_t> CubeCatalog::Find(const std::string& name, SourceDocument& document,
                                             const std::string& pointer)
{
    const auto found = mIndex.Find(name);
    if (found || !mIndex.IsComplete() || document.problems.IsReported(pointer))
        return found;
    if (mNeedsCode)
        mLeftOut.Add("uses of cubes that need code", name);
    else
        document.problems.Add(pointer, "there is no cube \"" + name + '"', mIndex.Nearest(name));
    return found;
}

/// Reads the entries of a list that may stand empty.
std::vector<PlacedJson> ReadEntries(JsonObject& object, const char* key, JsonProblems& problems)
{
    const PlacedJson list = object.Find(key);
    if (list.value == nullptr || list.value->is_null())
        return {};
    return ReadList(list, problems);
}

} // namespace qe::tool
