#include "Engine/Expression/ParseReport.h"
#include "Engine/Model/Model.h"
#include "Engine/Model/Names.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Tests/Toolkit/ReadSource.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Export/ExportFormat.h"
#include "Toolkit/Import/OpenModel.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace qe;
using namespace qe::tool;
using testing::HasSubstr;

struct Exported
{
    std::string text{};
    std::vector<std::string> notes{};
};

Exported Export(std::string_view word, const ToolModel& model)
{
    const auto formats = ListExportFormats();
    const auto format =
        std::find_if(formats.begin(), formats.end(),
                     [word](const ExportFormat& known) { return known.word == word; });
    LeftOut leftOut;
    Exported exported;
    exported.text = format->write(model, leftOut);
    exported.notes = leftOut.List();
    return exported;
}

/// Returns the pairs of columns that a join compares, with the cardinalities where they are to be
/// the same.
std::string DescribeJoin(const ToolModel& tool, const amd_id& id, bool hasCardinalities)
{
    const model::ObjectRecord& join = *tool.model->Find(id);
    std::vector<std::string> ends;
    for (const auto& reference : expression::FindReferences(I18NString(join.text)).references) {
        const std::string subject = (reference.names.end() - 2)->ToStdString();
        const bool isLeft = subject == tool.model->Find(join.left)->name;
        const model::CardinalityRange& range =
            isLeft ? join.leftCardinality : join.rightCardinality;
        ends.push_back(subject + '.' + reference.names.back().ToStdString());
        if (hasCardinalities && join.left != join.right)
            ends.back() +=
                ' ' + std::to_string(range.minimum) + ' ' + std::to_string(range.maximum);
    }
    std::sort(ends.begin(), ends.end());
    std::string line;
    for (const std::string& end : ends)
        line += end + "; ";
    return line;
}

std::multiset<std::string> DescribeJoins(const ToolModel& tool, bool hasCardinalities)
{
    std::multiset<std::string> lines;
    for (const amd_id& id : tool.model->GetJoins())
        lines.insert(DescribeJoin(tool, id, hasCardinalities));
    return lines;
}

/// Returns the joins that connect two subjects.
std::set<std::string> FindPath(const ToolModel& tool, const std::vector<std::string>& subjects)
{
    std::set<std::string> lines;
    for (const amd_id& id : Ask(tool, test::Connect(subjects)).path)
        lines.insert(DescribeJoin(tool, id, false));
    return lines;
}

/// Returns whether all joins could be written.
bool HasAllJoins(const Exported& exported)
{
    return std::none_of(exported.notes.begin(), exported.notes.end(), [](const std::string& note) {
        return note.find("joins whose") != std::string::npos ||
               note.find("joins that") != std::string::npos;
    });
}

TEST(Export, WhatIsWrittenReadsBackWithTheSameJoins)
{
    const test::TemporaryFolder folder;
    std::size_t models = 0;
    for (const char* kind : {"schemas", "models", "dumps"}) {
        const std::filesystem::path data = std::filesystem::path(QEREFINER_DATA_DIR) / kind;
        if (!std::filesystem::exists(data))
            GTEST_SKIP() << "no models at hand: " << data;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(data)) {
            const std::string path = entry.path().string();
            const bool isModel = path.ends_with(".sql") || path.ends_with(".manifest.json") ||
                                 path.find("/tbls/") != std::string::npos ||
                                 path.ends_with(".yaml");
            if (!isModel || path.ends_with(".truth.json") || path.ends_with(".schema.json") ||
                entry.file_size() > 300'000)
                continue;
            SCOPED_TRACE(path);
            const ToolModel model = OpenModel(entry.path());
            for (const char* format : {"ossie", "tbls"}) {
                const Exported exported = Export(format, model);
                if (!HasAllJoins(exported))
                    continue;
                ++models;
                const ToolModel read = OpenModel(folder.Write("written.json", exported.text));
                const bool isTbls = std::string(format) == "tbls";
                EXPECT_EQ(DescribeJoins(read, isTbls), DescribeJoins(model, isTbls)) << format;
            }
        }
    }
    EXPECT_GT(models, 50U);
}

TEST(Export, WhatIsWrittenGivesTheSameAnswers)
{
    const auto files = test::ListOpenModels();
    if (files.empty())
        GTEST_SKIP() << "no models at hand";
    const test::TemporaryFolder folder;
    constexpr std::size_t kPairsPerModel = 12;
    std::size_t asked = 0;
    for (const test::OpenModelFile& file : files) {
        const ToolModel model = OpenModel(file.source);
        std::vector<std::string> names;
        for (const amd_id& id : model.model->GetSubjects())
            names.push_back(model::ToText({model.model->Find(id)->name}));
        // Roles come last, and shall be asked for.
        std::reverse(names.begin(), names.end());
        for (const char* format : {"ossie", "tbls"}) {
            const Exported exported = Export(format, model);
            if (!HasAllJoins(exported))
                continue;
            const ToolModel read = OpenModel(folder.Write("written.json", exported.text));
            for (std::size_t i = 0; i < std::min(names.size(), kPairsPerModel); ++i) {
                const std::string& other = names[(7 * i + 1) % names.size()];
                if (other == names[i])
                    continue;
                ++asked;
                EXPECT_EQ(FindPath(read, {names[i], other}), FindPath(model, {names[i], other}))
                    << file.source << ' ' << format << ' ' << names[i] << ' ' << other;
            }
        }
    }
    EXPECT_GT(asked, 200U);
}

TEST(Export, RolesAndNamesThatAreAlikeStayApart)
{
    const ToolModel model = test::MakeModel(R"(
        Sales >o-o Date : order on [Model].[Sales].[ordered] = [Model].[Date].[day]
        Shipped -> Date
        Sales >o-o Shipped : ship on [Model].[Sales].[shipped] = [Model].[Shipped].[day]
        Empty >o-o Date : plain on [Model].[Empty].[day] = [Model].[Date].[day]
        Sales(ordered, shipped), Date(day))");
    const test::TemporaryFolder folder;
    for (const char* format : {"ossie", "tbls"}) {
        const ToolModel read = OpenModel(folder.Write("written.json", Export(format, model).text));
        EXPECT_THAT(FindPath(read, {"Sales", "Date"}),
                    testing::ElementsAre("Date.day; Sales.ordered; "));
        EXPECT_THAT(FindPath(read, {"Sales", "Shipped"}),
                    testing::ElementsAre("Sales.shipped; Shipped.day; "));
    }
    const Exported dbml = Export("dbml", model);
    EXPECT_THAT(dbml.text, HasSubstr("\"Sales\".\"shipped\" > \"Shipped\".\"day\"\n"));
    EXPECT_THAT(dbml.notes, testing::Contains(HasSubstr("table of another subject: Shipped")));
    // References must lead to columns that a table has.
    EXPECT_THAT(dbml.text, HasSubstr("Table \"Empty\" {\n  \"day\" any\n}\n"));
    EXPECT_THAT(Export("mermaid", model).text,
                HasSubstr("\"Sales\" }o--o| \"Shipped\" : \"ship\""));

    const ToolModel alike = test::ImportText(R"(
        CREATE TABLE "a%" ("x%" INTEGER PRIMARY KEY, "x""" INTEGER);
        CREATE TABLE "a\" ("x'" INTEGER REFERENCES "a%"("x%"), "x""" INTEGER PRIMARY KEY);)");
    const std::string mermaid = Export("mermaid", alike).text;
    EXPECT_THAT(mermaid,
                HasSubstr("    \"a_\" {\n        any x_ PK \"x_\"\n        any x__2 \"x'\"\n"));
    EXPECT_THAT(mermaid, HasSubstr("    \"a_ (2)\" }o--o| \"a_\" : "));
    EXPECT_THAT(Export("dbml", alike).text,
                HasSubstr("Table \"a/\" {\n  \"x'\" any\n  \"x' (2)\" any\n  indexes {\n"
                          "    \"x' (2)\" [pk]\n"));
}

TEST(Export, OddNamesAreQuotedAndWhatHasNoPlaceIsTold)
{
    const ToolModel model = test::ImportText(R"(
        CREATE TABLE "Order ""Lines""" (id INTEGER PRIMARY KEY, "100% sure" INTEGER NOT NULL
            REFERENCES "two
lines"(id));
        CREATE TABLE "two
lines" (id INTEGER PRIMARY KEY);)");
    const Exported mermaid = Export("mermaid", model);
    EXPECT_THAT(mermaid.text, HasSubstr("erDiagram\n"));
    EXPECT_THAT(mermaid.text, HasSubstr("        any _100__sure FK \"100_ sure\"\n"));
    EXPECT_THAT(mermaid.text, HasSubstr("    \"Order 'Lines'\" }o--|| \"two_lines\" : \""));
    const Exported dbml = Export("dbml", model);
    EXPECT_THAT(dbml.text,
                HasSubstr("Table \"Order 'Lines'\" {\n  \"id\" any\n  \"100% sure\" any\n"
                          "  indexes {\n    \"id\" [pk]\n  }\n}\n"));
    EXPECT_THAT(dbml.text, HasSubstr(": \"Order 'Lines'\".\"100% sure\" > \"two lines\".\"id\"\n"));
    EXPECT_THAT(dbml.notes, testing::Contains(HasSubstr("that each row has a partner")));
    EXPECT_THAT(Export("dot", model).text, HasSubstr("graph"));

    const ToolModel odd = test::MakeModel(R"(
        A >o-o B : plain on [Model].[A].[x] = [Model].[B].[x]
        A >o-o B : range on [Model].[A].[x] >= [Model].[B].[x]
        A >-< B : both on ([Model].[B].[y] = [Model].[A].[y]) AND [Model].[A].[x] = [Model].[B].[x]
        A(x, y), B(x, y)
        R -> B
        A >o-o R : role on [Model].[A].[y] = [Model].[R].[x]
        filter f on [Model].[A].[x] > 1)");
    const Exported ossie = Export("ossie", odd);
    EXPECT_THAT(ossie.text, HasSubstr("\"to\": \"R\""));
    EXPECT_THAT(ossie.text, HasSubstr("\"from_columns\": [\"y\", \"x\"]"));
    EXPECT_THAT(ossie.notes,
                testing::UnorderedElementsAre(
                    HasSubstr("1 joins whose condition is more than equal columns: range"),
                    HasSubstr("2 cardinalities that do not follow from keys: plain, role"),
                    HasSubstr("1 words that each row has a partner: both"),
                    HasSubstr("1 filters: f")));
    EXPECT_THAT(Export("tbls", odd).text, HasSubstr("\"parent_cardinality\": \"one_or_more\""));
}

} // namespace
