#include "Toolkit/Model/ModelFile.h"

#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"
#include "Tests/Toolkit/Asking.h"
#include "Tests/Toolkit/SchemaCheck.h"
#include "Toolkit/Text/InputFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <random>
#include <set>
#include <sstream>

namespace qe::tool {
namespace {

using model::ObjectRecord;

std::ostream& operator<<(std::ostream& out, const amd_id& id)
{
    return out << id.domain << '/' << id.classCode << '/' << id.number;
}

/// Shows all that a model holds, one object a line.
std::string Describe(const ToolModel& tool)
{
    std::ostringstream out;
    const auto range = [&out](const model::CardinalityRange& cardinality) {
        out << ' ' << cardinality.minimum << ".." << cardinality.maximum;
    };
    out << tool.model->GetLocale({}).GetTag() << ' ' << tool.governors.crossProductAllowed << ' '
        << tool.governors.shortcutGrouping << ' ' << testing::PrintToString(tool.userClasses);
    for (const ObjectRecord& record : tool.model->GetRecords()) {
        out << '\n' << record.id << " in " << record.parent << ' ' << record.space << ": ";
        for (const std::string& text :
             {record.name, record.displayName, record.locale, record.text})
            out << '"' << text << "\" ";
        out << record.referenced << " kind " << record.shortcutKind << ' ' << record.left << ' '
            << record.right;
        range(record.leftCardinality);
        range(record.rightCardinality);
    }
    return out.str();
}

/// Returns the worked model of the documentation.
std::string WorkedModel()
{
    const std::string page = ReadInputFile(QEREFINER_SOURCE_DIR "/Documentation/model-format.md");
    const std::size_t start = page.find("```json\n") + 8;
    return page.substr(start, page.find("\n```\n", start) + 1 - start);
}

TEST(ModelFileTest, WorkedModelIsWrittenAsItStands)
{
    const std::string text = WorkedModel();
    const ToolModel model = ReadModelText(text, "shop.json");
    EXPECT_EQ(model.governors.crossProductAllowed, 1);
    EXPECT_EQ(model.model->GetSubjects().size(), 8U);
    EXPECT_EQ(model.model->GetJoins().size(), 8U);
    EXPECT_EQ(WriteModelText(model), text);
}

TEST(ModelFileTest, ReadsEveryKey)
{
    const ToolModel model = ReadModelText(R"({
        "$schema": "model.schema.json", "version": 1, "locale": "de", "userClasses": ["b", "a"],
        "governors": {"crossProductAllowed": "deny", "shortcutGrouping": 7},
        "query": {"filters": [{"name": "qf", "condition": "[A].[i] > 1"}],
                  "joins": [{"name": "qj", "left": "A", "leftCardinality": "0..1", "right": "Z.S",
                             "rightCardinality": [0, 11]}]},
        "namespaces": [{"name": "Z", "id": [3, 9], "locale": "fr",
            "folders": [{"name": "F", "subjects": [{"name": "B", "id": 1}]}],
            "subjects": ["C"],
            "shortcuts": [{"name": "S", "target": {"class": 100, "id": [-1, 5]}, "kind": 2}],
            "relationships": [{"name": "r", "left": "A", "leftCardinality": "1..n", "right": "S",
                               "rightCardinality": "1..1"}]}],
        "relationships": [{"name": "s", "class": 136, "left": "c", "leftCardinality": [1, -2],
                           "right": "B", "rightCardinality": "0..n", "condition": "[A].[i] = 1"}],
        "relationshipShortcuts": [{"name": "rs", "target": "Z.r", "left": "B", "right": "C"}],
        "filters": [{"name": "f", "condition": "[A].[j] = [Z].[S].[i]"}],
        "subjects": [{"name": "A", "id": [-1, 5], "displayName": "Aah", "table": "t", "rows": 5000000000,
                      "items": ["i", {"name": "j", "displayName": "Jay", "locale": "it"}]}]
    })",
                                          "m");
    // B has the id that the C before it would have had.
    EXPECT_EQ(Describe(model), R"(de 2 7 { "b", "a" }
-1/100/5 in 0/0/0 0/0/0: "A" "Aah" "" "t" 0/0/0 kind 0 0/0/0 0/0/0 0..0 0..0
0/99/1 in 3/800001/9 3/800001/9: "F" "F" "" "" 0/0/0 kind 0 0/0/0 0/0/0 0..0 0..0
0/100/1 in 0/99/1 3/800001/9: "B" "B" "" "" 0/0/0 kind 0 0/0/0 0/0/0 0..0 0..0
0/100/2 in 3/800001/9 3/800001/9: "C" "C" "" "" 0/0/0 kind 0 0/0/0 0/0/0 0..0 0..0
0/101/1 in -1/100/5 0/0/0: "i" "i" "" "" 0/0/0 kind 0 0/0/0 0/0/0 0..0 0..0
0/101/2 in -1/100/5 0/0/0: "j" "Jay" "it" "" 0/0/0 kind 0 0/0/0 0/0/0 0..0 0..0
0/102/1 in 3/800001/9 3/800001/9: "r" "r" "" "" 0/0/0 kind 0 -1/100/5 0/109/1 11..12 11..11
0/109/1 in 3/800001/9 3/800001/9: "S" "S" "" "" -1/100/5 kind 2 0/0/0 0/0/0 0..0 0..0
0/110/1 in 0/0/0 0/0/0: "rs" "rs" "" "" 0/102/1 kind 0 0/100/1 0/100/2 0..0 0..0
0/114/1 in 0/0/0 0/0/0: "f" "f" "" "[A].[j] = [Z].[S].[i]" 0/0/0 kind 0 0/0/0 0/0/0 0..0 0..0
0/136/1 in 0/0/0 0/0/0: "s" "s" "" "[A].[i] = 1" 0/0/0 kind 0 0/100/2 0/100/1 1..-2 10..12
0/300005/1 in 0/0/0 0/0/0: "qj" "qj" "" "" 0/0/0 kind 0 -1/100/5 0/109/1 10..11 0..11
0/300020/1 in 0/0/0 0/0/0: "qf" "qf" "" "[A].[i] > 1" 0/0/0 kind 0 0/0/0 0/0/0 0..0 0..0
3/800001/9 in 0/0/0 0/0/0: "Z" "Z" "fr" "" 0/0/0 kind 0 0/0/0 0/0/0 0..0 0..0)");
}

TEST(ModelFile, KeepsKeysOfItsItems)
{
    const std::string text = R"({"subjects": [{"name": "A", "items": ["i", "j"],
                                               "keys": [["j", "i"], ["i"]]}],
                                 "shortcuts": []})";
    const std::string written = WriteModelText(ReadModelText(text, "m"));
    EXPECT_THAT(written, testing::HasSubstr(R"("keys": [["j", "i"], ["i"]])"));
    EXPECT_EQ(WriteModelText(ReadModelText(written, "m")), written);
    const std::string wrong = R"({"subjects": [{"name": "A", "items": ["ii"], "keys": [["i"]]}],
                                  "shortcuts": [{"name": "S", "target": "S"}]})";
    EXPECT_EQ(test::MistakesOf([&wrong] { static_cast<void>(ReadModelText(wrong, "m")); }),
              "m#/subjects/0/keys/0/0: is no item of the query subject: \"i\" (did you mean ii?)\n"
              "m#/shortcuts/0/target: shortcut \"S\" has itself as its target: \"S\"");
}

/// Makes random small models whose names are easily mistaken for each other.
class RandomModel
{
public:
    explicit RandomModel(unsigned seed) : mRandom(seed)
    {
        for (const std::int32_t classCode : {99, 100, 101, 102, 109, 110, 114, 136, 800001}) {
            for (const std::int32_t number : kReservedNumbers)
                mBuilder.Reserve(amd_id(0, classCode, number));
        }
    }

    ToolModel Make()
    {
        mSpaces = {{}};
        for (const char* name : {"A", "S.A", "a"})
            mSpaces.push_back(
                mBuilder.AddNamespace(mSpaces[Below(mSpaces.size())], name, Options(800001)));
        for (const amd_id& space : mSpaces)
            Fill(space);
        for (int i = 0; i < 8; ++i)
            AddJoin();
        mBuilder.AddSpecFilter("A", "1 = 1");
        ToolModel tool;
        tool.model = mBuilder.Build();
        tool.governors = {static_cast<std::int32_t>(Below(4)), static_cast<std::int32_t>(Below(3))};
        tool.userClasses.assign(Below(3), "u\"\\");
        return tool;
    }

private:
    /// Kept for objects that ask for them, among those that the builder assigns.
    static constexpr std::array<std::int32_t, 6> kReservedNumbers{-7, 2, 3, 5, 9, 40};

    std::size_t Below(std::size_t bound) { return mRandom() % bound; }

    model::ObjectOptions Options(std::int32_t classCode)
    {
        model::ObjectOptions options;
        const amd_id id(static_cast<std::int32_t>(Below(2)), classCode,
                        kReservedNumbers[Below(kReservedNumbers.size())]);
        if (Below(2) == 0 && mIds.insert(id).second)
            options.id = id;
        options.displayName = Below(5) == 0 ? "shown" : "";
        options.locale = Below(7) == 0 ? "fr" : "";
        return options;
    }

    void Fill(const amd_id& space)
    {
        const amd_id folder = mBuilder.AddFolder(space, "A", Options(IdClassFolder));
        for (const char* name : {"A", "a", "B", "A.B", "[x]", "\u00e9\n"}) {
            const amd_id parent = Below(2) == 0 ? folder : space;
            if (Below(3) == 0 && !mTargets.empty()) {
                const amd_id target = mTargets[Below(mTargets.size())];
                const auto kind = static_cast<std::int32_t>(Below(2));
                const amd_id id =
                    mBuilder.AddShortcut(parent, name, {target, kind}, Options(IdClassShortcut));
                if (target.classCode == IdClassQuerySubject)
                    mEnds.push_back(id);
                mTargets.push_back(id);
            } else if (Below(3) != 0) {
                AddSubject(parent, name);
            }
        }
        const amd_id filter = mBuilder.AddFilter(space, "B", "1 = 1", Options(IdClassFilter));
        mTargets.insert(mTargets.end(), {filter, folder});
    }

    void AddSubject(const amd_id& parent, const char* name)
    {
        const amd_id id = mBuilder.AddQuerySubject(parent, name, Options(IdClassQuerySubject));
        const amd_id item = mBuilder.AddItem(id, "A", Options(IdClassQueryItem));
        mEnds.push_back(id);
        mTargets.insert(mTargets.end(), {id, item});
    }

    void AddJoin()
    {
        if (mEnds.empty())
            return;
        const amd_id space = mSpaces[Below(mSpaces.size())];
        const model::JoinEnd left{mEnds[Below(mEnds.size())], model::kZeroToMany};
        const model::JoinEnd right{mEnds[Below(mEnds.size())], {0, 11}};
        const std::string name(1, static_cast<char>('A' + Below(2)));
        if (Below(3) == 0)
            mBuilder.AddRelationship136(space, name, left, {right.subject, {-5, 7}}, "",
                                        Options(IdClassRelationship136));
        else if (Below(3) == 0)
            mBuilder.AddSpecJoin(name, left, right);
        else if (Below(3) == 0 && mJoin != amd_id())
            mBuilder.AddRelationshipShortcut(space, name, {mJoin, left.subject, right.subject},
                                             Options(IdClassRelationshipShortcut));
        else
            mJoin = mBuilder.AddRelationship(space, name, left, right, "",
                                             Options(IdClassRelationship));
    }

    std::mt19937 mRandom;
    model::ModelBuilder mBuilder{"nl"};
    std::set<amd_id> mIds;
    std::vector<amd_id> mSpaces;
    std::vector<amd_id> mEnds;
    std::vector<amd_id> mTargets;
    amd_id mJoin;
};

TEST(ModelFileTest, WrittenModelsAreReadAsTheyWere)
{
    for (unsigned seed = 0; seed < 200; ++seed) {
        const ToolModel model = RandomModel(seed).Make();
        const std::string text = WriteModelText(model);
        SCOPED_TRACE("seed " + std::to_string(seed) + '\n' + text);
        const ToolModel read = ReadModelText(text, "m");
        ASSERT_EQ(Describe(read), Describe(model));
        ASSERT_EQ(WriteModelText(read), text);
    }
}

TEST(ModelFileTest, SchemaAcceptsWhatIsReadAndWritten)
{
    std::vector<std::string> texts{WorkedModel()};
    for (unsigned seed = 0; seed < 40; ++seed)
        texts.push_back(WriteModelText(RandomModel(seed).Make()));
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(QEREFINER_SOURCE_DIR "/Examples")) {
        const std::string text =
            entry.path().extension() == ".json" ? ReadInputFile(entry.path()) : "";
        if (text.find("\"subjects\"") == std::string::npos)
            continue;
        EXPECT_NO_THROW(static_cast<void>(ReadModelText(text, "example")));
        texts.push_back(text);
    }
    const auto refused = test::FindRefused("model.schema.json", texts);
    if (!refused)
        GTEST_SKIP() << "python3-jsonschema is not installed";
    EXPECT_THAT(*refused, testing::IsEmpty());
}

TEST(ModelFileTest, NoMutationIsHalfAccepted)
{
    const std::string text = WorkedModel();
    using namespace std::string_view_literals;
    constexpr std::string_view kPieces[] = {"\"", "{",     "}",      "[",       "]",     ",",
                                            ":",  "\\",    "\xC3",   "-1",      "1e999", "null",
                                            "[]", "\"a\"", "Orders", "\\u0000", "\0"sv};
    std::mt19937 random(1);
    int accepted = 0;
    for (int round = 0; round < 1500; ++round) {
        std::string mutated = text;
        for (int change = 0; change <= round % 3; ++change) {
            const std::size_t place = random() % mutated.size();
            const std::size_t length = random() % 3 == 0 ? random() % 60 : random() % 3;
            if (random() % 2 == 0)
                mutated.insert(place, mutated.substr(random() % mutated.size(), length));
            else
                mutated.replace(place, length, kPieces[random() % std::size(kPieces)]);
        }
        try {
            const ToolModel model = ReadModelText(mutated, "m");
            const std::string written = WriteModelText(model);
            ASSERT_EQ(Describe(ReadModelText(written, "m")), Describe(model)) << mutated;
            ++accepted;
        } catch (const InputError& error) {
            ASSERT_FALSE(error.GetProblems().empty());
            ASSERT_EQ(std::string(error.what()).rfind("m", 0), 0U) << error.what();
        }
    }
    EXPECT_GT(accepted, 50);
}

} // namespace
} // namespace qe::tool
