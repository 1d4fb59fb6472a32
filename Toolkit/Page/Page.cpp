#include "Toolkit/Page/Page.h"

#include "Toolkit/Answers/AnswerJson.h"
#include "Toolkit/Answers/AnswerSql.h"
#include "Toolkit/Answers/FormatInput.h"
#include "Toolkit/Draw/AnswerPicture.h"
#include "Toolkit/Draw/PictureFormat.h"
#include "Toolkit/Page/PageParts.h"
#include "Toolkit/Page/RequestRows.h"
#include "Toolkit/Text/InputError.h"

#include <algorithm>
#include <ostream>
#include <set>
#include <sstream>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;
using Ids = std::vector<amd_id>;

/// A path that the page offers.
struct PagePath
{
    Ids joins{};
    /// What it was ranked by; empty when it was not ranked.
    std::string measure{};
    std::string sql{};
    /// Why there is no SQL.
    std::string sqlProblem{};
};

std::string Name(const std::string& name)
{
    return "<bdi>" + EscapeMarkup(name) + "</bdi>";
}

/// Keeps the lines and makes everything else in them harmless.
std::string EscapeLines(const std::string& text)
{
    std::istringstream in(text);
    std::string escaped;
    for (std::string line; std::getline(in, line);)
        escaped += EscapeMarkup(line) + '\n';
    return escaped;
}

class PageWriter
{
public:
    explicit PageWriter(const FormatInput& input) : mInput(input), mAnswer(input.answer)
    {
        PictureLimits limits;
        limits.alternatives = input.options.alternatives;
        mPicture = DrawAnswer(input.model, input.answer, limits);
        ListPaths();
    }

    void Write(std::ostream& out) const
    {
        const std::string text = PageTemplate;
        std::size_t position = 0;
        // One pass: what is filled in is not looked at again.
        while (true) {
            const std::size_t begin = text.find('@', position);
            const std::size_t end = text.find('@', begin + 1);
            if (begin == std::string::npos || end == std::string::npos)
                break;
            out << text.substr(position, begin - position)
                << Fill(text.substr(begin + 1, end - begin - 1));
            position = end + 1;
        }
        out << text.substr(position);
    }

private:
    [[nodiscard]] std::string Fill(const std::string& place) const
    {
        if (place == "TITLE")
            return EscapeMarkup(Heading());
        if (place == "HEADING")
            return "Joins for " + Names();
        if (place == "STYLE")
            return PageStyle;
        if (place == "SCRIPT")
            return PageScript;
        if (place == "SUMMARY")
            return Summary();
        if (place == "PICTURE")
            return InlineSvg();
        if (place == "PATHS")
            return Choice() + Sections();
        if (place == "REQUEST")
            return Request();
        return place == "DATA" ? Data() : std::string();
    }

    void ListPaths();
    void AddPath(const Ids& joins, const std::string& measure);
    [[nodiscard]] std::string Heading() const;
    [[nodiscard]] std::string Names() const;
    [[nodiscard]] std::string Summary() const;
    [[nodiscard]] std::string InlineSvg() const;
    [[nodiscard]] std::string Choice() const;
    [[nodiscard]] std::string Sections() const;
    [[nodiscard]] std::string Section(std::size_t index) const;
    [[nodiscard]] std::string JoinTable(const Ids& joins) const;
    [[nodiscard]] std::string Request() const;
    [[nodiscard]] std::string Data() const;
    [[nodiscard]] Ids Asked() const;

    const FormatInput& mInput;
    const Answer& mAnswer;
    Picture mPicture;
    std::vector<PagePath> mPaths;
    std::size_t mChosen = 0;
};

std::string Measure(const Alternative& alternative)
{
    std::string text = "weight " + std::to_string(alternative.weight);
    if (alternative.factTables)
        text += ", fact tables " + std::to_string(*alternative.factTables);
    text += ", branches " + std::to_string(alternative.branches);
    if (alternative.rank)
        text += ", rank " + std::to_string(*alternative.rank);
    return text;
}

void PageWriter::AddPath(const Ids& joins, const std::string& measure)
{
    PagePath path{joins, measure, {}, {}};
    try {
        path.sql = WriteSql(mInput.model, mAnswer, joins, mInput.options.sql);
    } catch (const InputError& error) {
        path.sqlProblem = error.what();
    }
    mPaths.push_back(std::move(path));
}

void PageWriter::ListPaths()
{
    const ListLimit limit = mInput.options.alternatives;
    const std::size_t shown = limit.CountShown(mAnswer.alternatives.size());
    for (std::size_t i = 0; i < shown; ++i)
        AddPath(mAnswer.alternatives[i].joins, Measure(mAnswer.alternatives[i]));
    for (const Ids& path : ListShownPaths(mAnswer, limit)) {
        const bool isKnown = std::any_of(mPaths.begin(), mPaths.end(), [&path](const auto& known) {
            return known.joins == path;
        });
        if (!isKnown)
            AddPath(path, {});
    }
    const auto shownPaths = ListShownPaths(mAnswer, ListLimit(1));
    for (std::size_t i = 0; i < mPaths.size(); ++i) {
        if (!shownPaths.empty() && mPaths[i].joins == shownPaths.front())
            mChosen = i;
    }
}

Ids PageWriter::Asked() const
{
    Ids asked = mAnswer.terminals;
    asked.insert(asked.end(), mAnswer.secondSet.begin(), mAnswer.secondSet.end());
    return asked;
}

std::string PageWriter::Heading() const
{
    std::string text = "Joins for ";
    const char* separator = "";
    for (const amd_id& subject : Asked()) {
        text += separator + mAnswer.NameOf(subject);
        separator = ", ";
    }
    return text;
}

std::string PageWriter::Names() const
{
    std::string text;
    for (const amd_id& subject : Asked())
        text += (text.empty() ? "" : ", ") + Name(mAnswer.NameOf(subject));
    return text;
}

std::string PageWriter::Summary() const
{
    std::string text;
    if (mPaths.empty())
        text += "<p class=\"problem\">No joins connect them.</p>\n";
    else
        text += "<p>" + std::to_string(mPaths[mChosen].joins.size()) + " joins" +
                (mAnswer.weight ? ", weight " + std::to_string(*mAnswer.weight) : "") +
                (ToText(mAnswer.criterion).empty()
                     ? std::string()
                     : ". Decided by: " + std::string(ToText(mAnswer.criterion))) +
                ".</p>\n";
    for (const AnswerMessage& warning : mAnswer.warnings)
        text += "<p class=\"problem\">" + EscapeMarkup(warning.text) + "</p>\n";
    if (mAnswer.error)
        text += "<p class=\"problem\">" + EscapeMarkup(mAnswer.error->text) + "</p>\n";
    for (const std::string& notice : mAnswer.notices)
        text += "<p>" + EscapeMarkup(notice) + "</p>\n";
    if (!mAnswer.separation.bridge.empty()) {
        text += "<p>Groups that no join connects:</p>\n<ul>\n";
        for (const Ids& group : mAnswer.separation.groups) {
            std::string names;
            for (const amd_id& subject : group)
                names += (names.empty() ? "" : ", ") + Name(mAnswer.NameOf(subject));
            text += "<li>" + names + "</li>\n";
        }
        text += "</ul>\n";
    }
    return text;
}

std::string PageWriter::InlineSvg() const
{
    const std::string svg = MakeSvg(mPicture);
    const std::size_t begin = svg.find("<svg");
    return begin == std::string::npos ? std::string() : svg.substr(begin);
}

std::string PageWriter::Choice() const
{
    if (mPaths.size() < 2)
        return {};
    std::string text =
        "<section aria-labelledby=\"choice-heading\">\n<h2 id=\"choice-heading\">"
        "Ranked alternatives</h2>\n<fieldset>\n<legend>Show in the picture</legend>\n";
    for (std::size_t i = 0; i < mPaths.size(); ++i) {
        std::string names;
        for (const amd_id& id : mPaths[i].joins) {
            const AnswerJoin* const join = mAnswer.FindJoin(id);
            const bool isNamed = join != nullptr && !join->name.empty();
            names += (names.empty() ? "" : ", ") +
                     (isNamed ? Name(join->name) : EscapeMarkup(std::string(JoinKindTitle(id))));
        }
        text += "<label><input type=\"radio\" name=\"path\" value=\"" + std::to_string(i) + '"' +
                (i == mChosen ? " checked" : "") + "><span>" +
                (i == mChosen ? "<span class=\"badge\">chosen</span> " : "") + names +
                "<br><span class=\"measure\">" + EscapeMarkup(mPaths[i].measure) +
                "</span></span></label>\n";
    }
    text += "</fieldset>\n";
    if (mPaths.size() < mAnswer.alternatives.size())
        text += "<p>" + std::to_string(mAnswer.alternatives.size() - mPaths.size()) +
                " further alternatives are not shown.</p>\n";
    return text + "</section>\n";
}

std::string PageWriter::Sections() const
{
    std::string text;
    for (std::size_t i = 0; i < mPaths.size(); ++i)
        text += Section(i);
    return text;
}

std::string PageWriter::JoinTable(const Ids& joins) const
{
    std::string text = "<table>\n<thead><tr><th>From</th><th>To</th><th>Rows</th><th>Condition"
                       "</th></tr></thead>\n<tbody>\n";
    for (const amd_id& id : joins) {
        const AnswerJoin* const join = mAnswer.FindJoin(id);
        if (join == nullptr)
            continue;
        const bool isShortcut = join->condition.empty() && join->name.empty();
        text += "<tr><td data-label=\"From\">" + Name(mAnswer.NameOf(join->left)) +
                "</td><td data-label=\"To\">" + Name(mAnswer.NameOf(join->right)) +
                "</td><td data-label=\"Rows\">" + ToText(join->leftCardinality) + " to " +
                ToText(join->rightCardinality) + "</td><td data-label=\"Condition\">" +
                (isShortcut ? "one stands for the other"
                            : "<code>" + EscapeMarkup(join->condition) + "</code>") +
                "</td></tr>\n";
    }
    return text + "</tbody>\n</table>\n";
}

std::string PageWriter::Section(std::size_t index) const
{
    const PagePath& path = mPaths[index];
    const std::string number = std::to_string(index);
    std::string text = "<section class=\"path\" id=\"path-" + number + '"' +
                       (index == mChosen ? "" : " hidden") + ">\n<h2>" +
                       (index == mChosen ? "Chosen path" : "Alternative " + number) + "</h2>\n" +
                       JoinTable(path.joins);
    if (!path.sqlProblem.empty())
        return text + "<p class=\"problem\">No SQL: " + EscapeMarkup(path.sqlProblem) +
               "</p>\n</section>\n";
    return text + "<h2>SQL</h2>\n<button type=\"button\" class=\"copy\" data-path=\"" + number +
           "\">Copy</button> <span role=\"status\"></span>\n<pre tabindex=\"0\" "
           "aria-label=\"SQL\"><code>" +
           EscapeLines(path.sql) + "</code></pre>\n</section>\n";
}

std::string PageWriter::Request() const
{
    std::string text = "<section aria-labelledby=\"request-heading\">\n<h2 "
                       "id=\"request-heading\">Request and settings</h2>\n<dl>\n";
    for (const auto& [title, value] : ListRequestRows(mInput.question, mAnswer))
        text += "<dt>" + EscapeMarkup(title) + "</dt><dd>" + Name(value) + "</dd>\n";
    return text + "</dl>\n</section>\n";
}

std::string PageWriter::Data() const
{
    Json data{{"chosen", mChosen}, {"paths", Json::array()}};
    for (const PagePath& path : mPaths) {
        Json parts = Json::array();
        std::set<std::size_t> nodes;
        for (std::size_t i = 0; i < mPicture.edges.size(); ++i) {
            const PictureEdge& edge = mPicture.edges[i];
            if (std::find(path.joins.begin(), path.joins.end(), edge.id) == path.joins.end())
                continue;
            parts.push_back('e' + std::to_string(i));
            nodes.insert({edge.first, edge.second});
        }
        for (const std::size_t node : nodes)
            parts.push_back('n' + std::to_string(node));
        data["paths"].push_back({{"sql", path.sql}, {"parts", std::move(parts)}});
    }
    // Nothing in the data may end the element that holds it.
    std::string text;
    for (const char character : data.dump(-1, ' ', true, Json::error_handler_t::replace))
        text += character == '<' ? "\\u003c" : std::string(1, character);
    return text;
}

} // namespace

void WriteHtmlFormat(std::ostream& out, const FormatInput& input)
{
    PageWriter(input).Write(out);
}

} // namespace qe::tool
