#include "Toolkit/Draw/DotWriter.h"

#include "Toolkit/Draw/Picture.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/PlainText.h"
#include "Toolkit/Text/TextStream.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <set>
#include <vector>

namespace qe::tool {

namespace {

/// Blue and vermilion are told apart by everybody.
constexpr const char* kChosenColour = "#0072B2";
constexpr const char* kAlternativeColour = "#D55E00";
constexpr const char* kContextColour = "#767676";

/// Names of joins longer than this only stand in the tooltip.
constexpr std::size_t kLongestEdgeLabel = 60;
/// Graphviz reads no text of more than 16,384 bytes, and nobody a much shorter one.
constexpr std::size_t kLongestText = 1000;
/// With more joins, those beside the answer have no cardinalities.
constexpr std::size_t kManyEdges = 60;

const char* ShapeOf(PictureNode::EKind kind)
{
    switch (kind) {
    case PictureNode::EKind::Fact:
        return "shape=box peripheries=2";
    case PictureNode::EKind::Dimension:
        return "shape=box style=\"rounded,filled\"";
    case PictureNode::EKind::Shortcut:
        return "shape=note";
    case PictureNode::EKind::Plain:
        break;
    }
    return "shape=box";
}

const char* LookOf(PictureNode::ERole role)
{
    switch (role) {
    case PictureNode::ERole::Asked:
        return "penwidth=3 fillcolor=\"#DCEBF5\" color=\"#0072B2\" fontname=\"Helvetica-Bold\" "
               "class=\"asked\"";
    case PictureNode::ERole::OnPath:
        return "penwidth=2 color=\"#0072B2\" class=\"onpath\"";
    case PictureNode::ERole::Context:
        break;
    }
    return "color=\"#767676\" fontcolor=\"#404040\" class=\"context\"";
}

std::string LookOf(const PictureEdge& edge)
{
    const std::string stands = edge.kind == PictureEdge::EKind::StandsFor ? ",dotted" : "";
    switch (edge.role) {
    case PictureEdge::ERole::Chosen:
        return "style=\"bold" + stands + "\" penwidth=4.5 color=\"" + kChosenColour +
               "\" fontcolor=\"#005A8C\" class=\"chosen\"";
    case PictureEdge::ERole::Alternative:
        return "style=\"dashed" + stands + "\" penwidth=2.2 color=\"" + kAlternativeColour +
               "\" fontcolor=\"#A34700\" class=\"alternative\"";
    case PictureEdge::ERole::Context:
        break;
    }
    return "style=\"solid" + stands + "\" penwidth=0.9 color=\"" + kContextColour +
           "\" fontcolor=\"#595959\" class=\"context\"";
}

std::string QuoteLines(const std::vector<std::string>& lines)
{
    std::string quoted = "\"\"";
    for (const std::string& line : lines) {
        quoted.pop_back();
        quoted += (quoted.size() > 1 ? "\\n" : "") + QuoteForDot(line).substr(1);
    }
    return quoted;
}

void WriteNode(const Picture& picture, std::size_t position, std::ostream& out)
{
    const PictureNode& node = picture.nodes[position];
    std::vector<std::string> lines{node.name};
    if (!node.target.empty())
        lines.push_back("\u2192 " + node.target);
    out << "  n" << position << " [id=\"n" << position << "\" label=" << QuoteLines(lines) << ' '
        << ShapeOf(node.kind) << ' ' << LookOf(node.role) << "]\n";
}

/// A name that only repeats the two ends adds nothing to the line.
std::string EdgeLabel(const Picture& picture, const PictureEdge& edge)
{
    if (edge.role == PictureEdge::ERole::Context)
        return edge.joins == 1 ? std::string() : std::to_string(edge.joins) + " joins";
    if (edge.kind == PictureEdge::EKind::StandsFor)
        return "stands for";
    const std::string& first = picture.nodes[edge.first].name;
    const std::string& second = picture.nodes[edge.second].name;
    const std::array names{first + '-' + second, second + '-' + first};
    for (const std::string& plain : names) {
        if (edge.name == plain)
            return {};
        // Of "Orders-Day (shipped)" the part in parentheses tells the joins apart.
        if (edge.name.compare(0, plain.size() + 1, plain + ' ') == 0)
            return edge.name.substr(plain.size() + 1);
    }
    return edge.name.size() > kLongestEdgeLabel ? std::string() : edge.name;
}

bool HasCardinalities(const Picture& picture, const PictureEdge& edge)
{
    const bool isContext = edge.role == PictureEdge::ERole::Context;
    return edge.kind == PictureEdge::EKind::Join &&
           (!isContext || (edge.joins == 1 && picture.edges.size() <= kManyEdges));
}

/// Returns whether lines lead back from the second end to the first. All others are drawn from left
/// to right; of the lines of a cycle some are not.
bool IsOnCycle(const Picture& picture, const PictureEdge& edge)
{
    std::set<std::size_t> reached{edge.second};
    std::vector<std::size_t> open{edge.second};
    while (!open.empty() && reached.count(edge.first) == 0) {
        const std::size_t node = open.back();
        open.pop_back();
        for (const PictureEdge& step : picture.edges) {
            if (step.first == node && reached.insert(step.second).second)
                open.push_back(step.second);
        }
    }
    return reached.count(edge.first) > 0;
}

/// In the middle of a line the layout keeps room for a label, but not at its ends, where many
/// lines may meet. There stand only what would read in the wrong order.
void WriteLabels(const Picture& picture, const PictureEdge& edge, std::ostream& out)
{
    std::vector<std::string> lines;
    if (HasCardinalities(picture, edge)) {
        if (IsOnCycle(picture, edge))
            out << " taillabel=" << QuoteForDot(edge.firstCardinality)
                << " headlabel=" << QuoteForDot(edge.secondCardinality);
        else
            lines.push_back(' ' + edge.firstCardinality + " \u2013 " + edge.secondCardinality +
                            ' ');
    }
    if (const std::string label = EdgeLabel(picture, edge); !label.empty())
        lines.push_back(' ' + label + ' ');
    if (!edge.decision.empty())
        lines.push_back(' ' + std::string(edge.decision) + ' ');
    if (!lines.empty())
        out << " label=" << QuoteLines(lines);
}

void WriteEdge(const Picture& picture, std::size_t position, std::ostream& out)
{
    const PictureEdge& edge = picture.edges[position];
    out << "  n" << edge.first << " -- n" << edge.second << " [id=\"e" << position << "\" "
        << LookOf(edge);
    WriteLabels(picture, edge, out);
    if (edge.role != PictureEdge::ERole::Context)
        out << " weight=4";
    out << "]\n";
}

std::vector<std::string> Caption(const Picture& picture)
{
    const auto hasNode = [&picture](PictureNode::EKind kind) {
        return std::any_of(picture.nodes.begin(), picture.nodes.end(),
                           [kind](const PictureNode& node) { return node.kind == kind; });
    };
    const auto hasEdge = [&picture](PictureEdge::ERole role) {
        return std::any_of(picture.edges.begin(), picture.edges.end(),
                           [role](const PictureEdge& edge) { return edge.role == role; });
    };
    std::string text;
    const auto add = [&text](bool isShown, const char* entry) {
        if (isShown)
            text += (text.empty() ? "" : "  \u00b7  ") + std::string(entry);
    };
    add(hasNode(PictureNode::EKind::Fact), "double border: fact");
    add(hasNode(PictureNode::EKind::Dimension), "round corners: dimension");
    add(hasNode(PictureNode::EKind::Shortcut), "folded corner: shortcut");
    add(hasEdge(PictureEdge::ERole::Chosen), "thick line: chosen path");
    add(hasEdge(PictureEdge::ERole::Alternative), "dashed line: equally cheap");
    std::vector<std::string> lines{text};
    if (picture.nodes.size() < picture.subjects)
        lines.push_back(std::to_string(picture.nodes.size()) + " of " +
                        std::to_string(picture.subjects) + " subjects are drawn");
    return lines;
}

} // namespace

std::string QuoteForDot(std::string_view text)
{
    std::string quoted = "\"";
    for (const char character : ShortenText(ToDisplayText(text), kLongestText)) {
        if (character == '&')
            quoted += "&amp;";
        else {
            if (character == '"' || character == '\\')
                quoted += '\\';
            quoted += character;
        }
    }
    return quoted + '"';
}

std::string WriteDot(const Picture& picture)
{
    TextStream out;
    out << "graph joins {\n"
           "  graph [rankdir=LR nodesep=0.42 ranksep=0.8 fontname=\"Helvetica\" fontsize=11 "
           "labelloc=b bgcolor=\"white\" charset=\"UTF-8\" label="
        << QuoteLines(Caption(picture))
        << "]\n"
           "  node [style=filled fillcolor=\"white\" fontname=\"Helvetica\" fontsize=13 "
           "margin=\"0.14,0.07\" height=0.35]\n"
           "  edge [fontname=\"Helvetica\" fontsize=10 labeldistance=2.4 labelangle=16]\n";
    for (std::size_t i = 0; i < picture.nodes.size(); ++i)
        WriteNode(picture, i, out);
    for (std::size_t i = 0; i < picture.edges.size(); ++i)
        WriteEdge(picture, i, out);
    out << "}\n";
    return out.str();
}

} // namespace qe::tool
