#include "Tests/Support/ModelText.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Draw/DotWriter.h"
#include "Toolkit/Draw/Pictures.h"

#include <cstdlib>
#include <gmock/gmock.h>

namespace qe::tool {

namespace {

using test::Connect;
using test::MakeModel;
using test::WriteAs;

/// Writes nodes as "Name" with a mark of their kind and role, edges with one of their role.
std::string Summarize(const Picture& picture)
{
    std::string text;
    for (const PictureNode& node : picture.nodes) {
        text += node.name + " .FDS"[static_cast<std::size_t>(node.kind) + 1];
        text += " +!"[static_cast<std::size_t>(node.role)];
        text += ' ';
    }
    for (const PictureEdge& edge : picture.edges) {
        text += "| " + picture.nodes[edge.first].name + ' ' + edge.firstCardinality +
                " -~="[static_cast<std::size_t>(edge.role) + 1] + edge.secondCardinality + ' ' +
                picture.nodes[edge.second].name + ' ';
        if (edge.joins > 1)
            text += 'x' + std::to_string(edge.joins) + ' ';
    }
    return text;
}

TEST(Pictures, MarkChosenAndEquallyCheapPaths)
{
    const ToolModel model = MakeModel("F >- A; F >o-o B; D -< A; B >- D; F >- E; E >- F; S -> D");
    EXPECT_EQ(Summarize(DrawAnswer(model, Ask(model, Connect({"F", "D"})), {})),
              "FD! AD+ BD  DD! ED  SS  "
              "| F 1..n=1..1 A | F 0..n~0..1 B | A 1..n=1..1 D | B 1..n~1..1 D "
              "| F 1..n-1..1 E x2 | S 1..1-1..1 D ");
}

TEST(Pictures, ShowTheNeighbourhoodInALargeModel)
{
    std::string joins = "A >- B;";
    for (int i = 0; i < 60; ++i)
        joins += "A >- X" + std::to_string(i) + "; X" + std::to_string(i) + " >- Y;";
    const test::ModelText text(joins + "B >- X7; B >- X9");
    const ToolModel model{text.GetModel()};
    PictureLimits limits;
    limits.neighbours = 3;
    const Picture picture = DrawAnswer(model, Ask(model, Connect({"A", "B"})), limits);
    std::string names;
    for (const PictureNode& node : picture.nodes)
        names += node.name + ' ';
    // Those that touch the answer twice come first.
    EXPECT_EQ(names, "A B X0 X7 X9 ");
    EXPECT_NE(WriteDot(picture).find("5 of 63 subjects are drawn"), std::string::npos);
    EXPECT_EQ(DrawModel(model, text.Ids("B"), ListLimit::All()).nodes.size(), 4U);
    EXPECT_EQ(DrawModel(model, {}, ListLimit(10)).nodes.size(), 10U);
    EXPECT_EQ(DrawModel(model, {}, ListLimit::All()).nodes.size(), 63U);
}

TEST(Pictures, KeepRoomForCardinalitiesWhereTheirOrderIsCertain)
{
    const ToolModel model = MakeModel("F >- A : j; F >o-o C : F-C; C >- D : CD; D >- E; E >- C");
    const std::string dot = WriteDot(DrawAnswer(model, Ask(model, Connect({"A", "C", "D"})), {}));
    const auto labelsOf = [&dot](const char* line) {
        const std::size_t begin = dot.find(std::string("  ") + line + " [");
        const std::size_t labels = dot.find("\" ", dot.find("class=", begin)) + 2;
        return dot.substr(labels, dot.find_first_of("]w", labels) - labels);
    };
    EXPECT_EQ(labelsOf("n0 -- n1"), "label=\" 1..n \u2013 1..1 \\n j \" ");
    EXPECT_EQ(labelsOf("n0 -- n2"), "label=\" 0..n \u2013 0..1 \" ");
    // A ring has a line that leads from right to left.
    EXPECT_EQ(labelsOf("n2 -- n3"), "taillabel=\"1..n\" headlabel=\"1..1\" label=\" CD \" ");
}

TEST(Pictures, TellWhatIsMissing)
{
    const std::string path = std::getenv("PATH");
    setenv("PATH", "/nowhere", 1);
    EXPECT_THAT(test::MistakesOf([] {
                    static_cast<void>(WriteAs("svg", MakeModel("A >- B"), Connect({"A", "B"})));
                }),
                testing::HasSubstr("install Graphviz"));
    setenv("PATH", path.c_str(), 1);
}

} // namespace

} // namespace qe::tool
