#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Tests/Toolkit/SchemaCheck.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Model/ModelFile.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace qe::tool {
namespace {

std::string MessageOfText(const std::string& text)
{
    return test::MistakesOf([&] { static_cast<void>(ReadModelText(text, "m")); });
}

std::string Repeat(const std::string& text, int count)
{
    std::string repeated;
    for (int i = 0; i < count; ++i)
        repeated += text;
    return repeated;
}

/// A text and what is reported of it.
struct Mistake
{
    const char* what;
    std::string text;
    std::string message;
};

void ExpectMistakes(const std::vector<Mistake>& mistakes)
{
    for (const Mistake& mistake : mistakes)
        EXPECT_EQ(MessageOfText(mistake.text), mistake.message) << mistake.what;
}

TEST(ModelMistakesTest, SyntaxHasLineAndColumn)
{
    const std::string parsing = "syntax error while parsing ";
    ExpectMistakes({
        {"nothing", "",
         "m:1:1: " + parsing + "value - unexpected end of input; expected '[', '{', or a literal"},
        {"missing comma", "{\n  \"a\u00e9\": 1 \"b\"",
         "m:2:13: " + parsing + "object - unexpected string literal; expected '}'"},
        {"open object", "{\"folders\": [\n",
         "m:2:1: " + parsing + "value - unexpected end of input; expected '[', '{', or a literal"},
        {"bytes that are not UTF-8", "{\"a\": \"\xC3(\"}",
         "m:1:9: " + parsing +
             "value - invalid string: ill-formed UTF-8 byte; last read: '\"\xC3('"},
        {"huge numbers", "{\"a\": [1,\n1e999]}", "m#/a/1: number overflow parsing '1e999'"},
        {"more after the end", "{} {}",
         "m:1:4: " + parsing + "value - unexpected '{'; expected end of input"},
        {"depth", Repeat("[", 300),
         "m:1#" + Repeat("/0", 40) + "..." + Repeat("/0", 40) +
             ": is nested too deep: more than 256 levels"},
    });
}

/// Mistakes that a schema can see.
const std::vector<Mistake> kContentMistakes{
    {"no object", "[]", "m#: must be an object, not a list"},
    {"version", R"({"version": 2})", "m#/version: must be 1: 2"},
    {"unknown key", R"({"namespace": [], "a/~b\n": 1})",
     "m#/a~1~0b\\u000a: key is unknown: \"a/~b\\u000a\"\n"
     "m#/namespace: key is unknown: \"namespace\" (did you mean namespaces?)"},
    {"types",
     R"({"locale": 1, "subjects": {}, "userClasses": [null], "governors": [],
             "filters": [{"name": true, "condition": {}}], "folders": [7]})",
     "m#/locale: must be a string, not a number\n"
     "m#/userClasses/0: must be a string, not null\n"
     "m#/governors: must be an object, not a list\n"
     "m#/subjects: must be a list, not an object\n"
     "m#/filters/0/name: must be a string, not true or false\n"
     "m#/filters/0/condition: must be a string, not an object\n"
     "m#/folders/0: must be an object, not a number"},
    {"governors", R"({"governors": {"crossProductAllowed": "no", "shortcutGrouping": 1.5}})",
     "m#/governors/crossProductAllowed: unknown value: \"no\"; it may be allow, warn, deny\n"
     "m#/governors/shortcutGrouping: must be a whole number, not a number with a fraction"},
    {"keys of a subject",
     R"({"subjects": [{"name": "A", "items": ["i"], "keys": [["i"], [], 7, [1]]}]})",
     "m#/subjects/0/keys/1: must name an item\n"
     "m#/subjects/0/keys/2: must be a list, not a number\n"
     "m#/subjects/0/keys/3/0: must be a string, not a number"},
    {"number beyond all bounds", R"({"subjects": [{"name": "A", "id": 1000000000000000000000}]})",
     "m#/subjects/0/id: must lie between -2147483648 and 2147483647: 1e+21"},
    {"missing keys", R"({"relationships": [{"name": "r", "lefft": "A"}], "subjects": [{}]})",
     "m#/subjects/0: lacks the key \"name\"\n"
     "m#/relationships/0: lacks the key \"left\", but has \"lefft\"\n"
     "m#/relationships/0: lacks the key \"leftCardinality\"\n"
     "m#/relationships/0: lacks the key \"right\"\n"
     "m#/relationships/0: lacks the key \"rightCardinality\""},
    {"ids",
     R"({"subjects": [{"name": "A", "id": 0}, {"name": "B", "id": 2147483648},
                          {"name": "C", "id": [1, 3]}, {"name": "D", "id": [1, 3]},
                          {"name": "E", "id": "1"}, {"name": "F", "id": [1]}]})",
     "m#/subjects/0/id: must not be 0\n"
     "m#/subjects/1/id: must lie between -2147483648 and 2147483647: 2147483648\n"
     "m#/subjects/3/id: is the id of another object of this kind: /subjects/2\n"
     "m#/subjects/4/id: must be a number or a list of domain and number, not a string\n"
     "m#/subjects/5/id: must be a number or a list of domain and number, not a list"},
    {"numbers far out of range",
     R"({"shortcuts": [{"name": "S", "target": "A", "kind": 18446744073709551615}],
             "subjects": ["A", "B\u0000"]})",
     "m#/subjects/1: must not hold the character U+0000\n"
     "m#/shortcuts/0/kind: must lie between -2147483648 and 2147483647: 18446744073709551615"},
    {"cardinalities and class",
     R"({"subjects": ["A"], "relationships": [{"name": "r", "class": 103, "left": "A",
             "leftCardinality": "1..m", "right": "A", "rightCardinality": [1]}, {"name": "s",
             "left": "A", "leftCardinality": [12, 11], "right": "A", "rightCardinality": 1}]})",
     "m#/relationships/0/class: must be a class of relationships (102 or 136): 103\n"
     "m#/relationships/0/leftCardinality: unknown cardinality: \"1..m\" (did you mean 1..1 or "
     "1..n?)\n"
     "m#/relationships/0/rightCardinality: must be a cardinality such as \"0..n\" or a list of "
     "two numbers, not a list\n"
     "m#/relationships/1/rightCardinality: must be a cardinality such as \"0..n\" or a list of "
     "two numbers, not a number\n"
     "m#/relationships/1/leftCardinality: relationship \"s\" has a cardinality at its left end "
     "that is not a valid range"},
};

TEST(ModelMistakesTest, ContentHasPointers)
{
    ExpectMistakes(kContentMistakes);
    ExpectMistakes({
        {"key given twice", R"({"folders": [{"name": "F", "id": 1, "name": "G"}]})",
         "m#/folders/0/name: key is given twice: \"name\""},
    });
}

TEST(ModelMistakesTest, SchemaRefusesThemToo)
{
    std::vector<std::string> texts;
    for (const Mistake& mistake : kContentMistakes)
        texts.push_back(mistake.text);
    const auto refused = test::FindRefused("model.schema.json", texts);
    if (!refused)
        GTEST_SKIP() << "python3-jsonschema is not installed";
    EXPECT_EQ(refused->size(), texts.size()) << testing::PrintToString(*refused);
}

TEST(ModelMistakesTest, NamesAreComparedWithTheModel)
{
    ExpectMistakes({
        {"names given twice",
         R"({"subjects": [{"name": "A", "items": ["i", "i", ""]}], "shortcuts": [{"name": "A",
             "target": "A"}], "namespaces": [{"name": "N", "namespaces": [{"name": "N"}]}]})",
         "m#/subjects/0/items/1: item \"i\" has the name of another object beside it: item 101:1\n"
         "m#/subjects/0/items/2: item 101:3 has no name\n"
         "m#/shortcuts/0/name: shortcut \"A\" has the name of another object beside it: query "
         "subject 100:1\n"
         "m#/namespaces/0/namespaces/0/name: namespace \"N\" has the name of another object beside "
         "it: namespace 800001:1"},
        {"unknown ends and targets",
         R"({"subjects": ["Orders", "Customer"], "shortcuts": [{"name": "S", "target": "Custmer"}],
             "relationships": [{"name": "r", "left": "Ordrs", "leftCardinality": "1..n",
             "right": {"class": 100, "id": 7}, "rightCardinality": "1..1"}],
             "relationshipShortcuts": [{"name": "rs", "target": "", "left": 5,
             "right": {"class": "100", "id": 7, "x": 0}}]})",
         "m#/relationshipShortcuts/0/left: must be a name or an object with class and id, not a "
         "number\n"
         "m#/relationshipShortcuts/0/right/class: must be a whole number, not a string\n"
         "m#/relationshipShortcuts/0/right/x: key is unknown: \"x\"\n"
         "m#/shortcuts/0/target: shortcut \"S\" has a target that is not in the model: \"Custmer\" "
         "(did you mean Customer?)\n"
         "m#/relationships/0/left: relationship \"r\" has a left end that is not in the model: "
         "\"Ordrs\" (did you mean Orders?)\n"
         "m#/relationships/0/right: relationship \"r\" has a right end that is not in the model: "
         "100:7\n"
         "m#/relationshipShortcuts/0/target: relationship shortcut \"rs\" has no target"},
        {"a cycle of shortcuts",
         R"({"shortcuts": [{"name": "S", "target": "T"}, {"name": "T", "target": "S"}]})",
         "m#/shortcuts/0/target: shortcut \"S\" has a chain of shortcuts that is cyclic\n"
         "m#/shortcuts/1/target: shortcut \"T\" has a chain of shortcuts that is cyclic"},
        {"folders too deep",
         R"({"folders": [)" + Repeat(R"({"name": "F", "folders": [)", 101) + R"({"name": "G"})" +
             Repeat("]}", 102),
         "m#" + Repeat("/folders/0", 102) + ": folder \"G\" lies too deep: more than 100 parents"},
    });
}

TEST(ModelMistakesTest, CountsWhatIsMoreThanAHundred)
{
    const std::string many = MessageOfText("{\"folders\": [" + Repeat("1,", 149) + "1]}");
    EXPECT_EQ(std::count(many.begin(), many.end(), '\n'), 100);
    EXPECT_EQ(many.substr(many.rfind('\n') + 1), "m: further mistakes: 50");
}

TEST(ModelMistakesTest, ConditionsAreComparedWithTheModel)
{
    const auto filter = [](const std::string& condition) {
        return R"({"namespaces": [{"name": "N", "subjects": [{"name": "A", "items": ["Key"]}],
                   "shortcuts": [{"name": "S]", "target": "A"}]}],
                   "subjects": [{"name": "T", "items": ["Key"]}],
                   "filters": [{"name": "f", "condition": ")" +
               condition + R"("}]})";
    };
    const std::string place = "m#/filters/0/condition: ";
    const std::string unknown = " what is not in the model: ";
    ExpectMistakes({
        {"right names", filter("[N].[A].[Key] = [N].[S]]].[Key] AND [T].[Key] > 1"), "no mistake"},
        {"no expression", filter("[N].[A].[Key] =\\n = 1"),
         place + "cannot be read at 2:2: expected an operand, found \"=\""},
        {"wrong item, through a shortcut", filter("1 = [N].[S]]].[Kay]"),
         place + "names at 1:5" + unknown + "[N].[S]]].[Kay] (did you mean [N].[S]]].[Key]?)"},
        {"wrong names at every step", filter("[M].[A].[Key] = [N].[B].[Key] OR [U].[Key] = 1"),
         place + "names at 1:1" + unknown + "[M].[A].[Key] (did you mean [N].[A].[Key]?)\n" +
             place + "names at 1:17" + unknown + "[N].[B].[Key] (did you mean [N].[A].[Key]?)\n" +
             place + "names at 1:34" + unknown + "[U].[Key] (did you mean [T].[Key]?)"},
        {"no namespace", filter("[A].[Key] = 1"),
         place + "names at 1:1" + unknown + "[A].[Key] (did you mean [N].[A].[Key]?)"},
        {"both at once", filter("[N].[A].[Kee] = ("),
         place + "cannot be read at 1:18: expected an operand, found the end of the text\n" +
             place + "names at 1:1" + unknown + "[N].[A].[Kee] (did you mean [N].[A].[Key]?)"},
        {"what has a mistake itself is not missed",
         R"({"subjects": [{"name": "A", "items": ["i"]}, {"name": "A", "items": ["j"]}],
             "shortcuts": [{"name": "S", "target": "B"}],
             "filters": [{"name": "f", "condition": "[A].[j] = [S].[i]"},
                         {"name": "g", "condition": "[X].[i] = 1"}]})",
         "m#/subjects/1/name: query subject \"A\" has the name of another object beside it: query "
         "subject 100:1\n"
         "m#/shortcuts/0/target: shortcut \"S\" has a target that is not in the model: \"B\" (did "
         "you mean A or S?)\n"
         "m#/filters/1/condition: names at 1:1 what is not in the model: [X].[i] (did you mean "
         "[A].[i]?)"},
    });
}

TEST(ModelMistakesTest, OpensWhatTheFileHolds)
{
    const auto messageOf = [](const std::filesystem::path& path) {
        return test::MistakesOf([&] { static_cast<void>(OpenModel(path)); });
    };
    const test::TemporaryFolder folder;
    const auto open = [&](const std::string& content) {
        const std::string path = folder.Write("model", content);
        const std::string text = messageOf(path);
        return text.rfind(path, 0) == 0 ? text.substr(path.size()) : text;
    };
    EXPECT_EQ(open("\xEF\xBB\xBF\n {\"subjects\": [\"A\"]}"), "no mistake");
    EXPECT_EQ(open("-- a comment\nCREATE TABLE a (b INTEGER);"), "no mistake");
    EXPECT_EQ(open(std::string("\xFF\xFE{\0}\0", 6)), open("{}"));
    EXPECT_EQ(open(std::string("SQLite format 3\0 but cut", 24)),
              ": cannot read the database: file is not a database");
    EXPECT_EQ(open("[1"), ":1:3: syntax error while parsing array - unexpected end of input; "
                          "expected ']'");
    EXPECT_EQ(open(""), ": is empty");
    EXPECT_EQ(open(std::string("\x7F\0ELF", 5)),
              ": is neither a model file nor an SQLite database nor SQL");

    EXPECT_EQ(open(" \n\t"), ": holds nothing but blanks and comments");
    EXPECT_EQ(open("\xEF\xBB\xBF# one\n-- two\n/* three */"), open("\n"));
    EXPECT_EQ(open(std::string("\xFF\xFE#\0", 4)), open("\n"));

    EXPECT_EQ(messageOf(folder / "").find(": is a folder without a model of the formats"),
              std::string(folder / "").size());
    EXPECT_EQ(messageOf("/no/such"), "/no/such: there is no such file");
    EXPECT_EQ(test::MistakesOf([] { static_cast<void>(ReadModelFile("/dev/zero")); }),
              "/dev/zero: is too large: more than 67108864 bytes");
}

} // namespace
} // namespace qe::tool
