#include "Toolkit/Draw/PictureFormat.h"

#include "Toolkit/Answers/FormatInput.h"
#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Draw/DotWriter.h"
#include "Toolkit/Draw/Graphviz.h"
#include "Toolkit/Draw/Pictures.h"
#include "Toolkit/Text/Markup.h"

#include <cstddef>
#include <ostream>
#include <string_view>
#include <utility>

namespace qe::tool {

namespace {

Picture Draw(const FormatInput& input)
{
    PictureLimits limits;
    limits.alternatives = input.options.alternatives;
    return DrawAnswer(input.model, input.answer, limits);
}

std::string TitleOf(const PictureNode& node)
{
    return node.target.empty() ? node.name : node.name + ", stands for " + node.target;
}

std::string TitleOf(const Picture& picture, const PictureEdge& edge)
{
    const std::string ends = picture.nodes[edge.first].name + " " + edge.firstCardinality + " to " +
                             edge.secondCardinality + " " + picture.nodes[edge.second].name;
    return edge.name.empty() ? ends : edge.name + ": " + ends;
}

/// The parts stand in the order of the graph, each titled with the names that the graph gave them.
class Titles
{
public:
    explicit Titles(std::string svg) : mSvg(std::move(svg)) {}

    void Replace(const std::string& id, const std::string& title)
    {
        const std::size_t part = mSvg.find("<g id=\"" + id + "\"");
        const std::size_t begin = mSvg.find("<title>", part);
        const std::size_t end = mSvg.find("</title>", begin);
        if (part == std::string::npos || end == std::string::npos)
            return;
        const std::size_t text = begin + std::string_view("<title>").size();
        mSvg.replace(text, end - text, EscapeMarkup(title));
    }
    [[nodiscard]] std::string Take() { return std::move(mSvg); }

private:
    std::string mSvg;
};

} // namespace

std::string MakeSvg(const Picture& picture, const DrawingWait& wait)
{
    Titles titles(RunGraphviz(WriteDot(picture), EImage::Svg, wait));
    for (std::size_t i = 0; i < picture.nodes.size(); ++i)
        titles.Replace('n' + std::to_string(i), TitleOf(picture.nodes[i]));
    for (std::size_t i = 0; i < picture.edges.size(); ++i)
        titles.Replace('e' + std::to_string(i), TitleOf(picture, picture.edges[i]));
    return titles.Take();
}

void WriteDotFormat(std::ostream& out, const FormatInput& input)
{
    out << WriteDot(Draw(input));
}

void WriteSvgFormat(std::ostream& out, const FormatInput& input)
{
    out << MakeSvg(Draw(input), {.signals = input.options.signals});
}

void WritePngFormat(std::ostream& out, const FormatInput& input)
{
    out << RunGraphviz(WriteDot(Draw(input)), EImage::Png, {.signals = input.options.signals});
}

} // namespace qe::tool
