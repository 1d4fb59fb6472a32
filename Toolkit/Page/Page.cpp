#include "Toolkit/Page/Page.h"

#include "IdClass.h"
#include "Source/Rules/RankingCriteria.h"
#include "Toolkit/Answers/FormatInput.h"
#include "Toolkit/Answers/RiskText.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Draw/PictureFormat.h"
#include "Toolkit/Draw/Pictures.h"
#include "Toolkit/Model/ToolModel.h"
#include "Toolkit/Page/PageParts.h"
#include "Toolkit/Page/RequestRows.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/Markup.h"
#include "Toolkit/Text/TextStream.h"

#include <algorithm>
#include <cstddef>
#include <kainjow/mustache.hpp>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;
/// What the template is filled with: page.html names the members.
using Data = kainjow::mustache::data;

/// A path that the page offers.
struct PagePath
{
    Ids joins{};
    /// Its number among the candidates, as the text counts them; empty when it is none of them.
    std::string number{};
    /// What it was ranked by; empty when it was not ranked.
    std::string measure{};
    Risks risks{};
    std::string sql{};
    /// Why there is no SQL.
    std::string sqlProblem{};
    /// The command line that keeps the path in the model file; empty where there is none.
    std::string saveCommand{};
};

std::string DescribeMeasure(const Alternative& alternative)
{
    std::string text;
    const auto add = [&text](std::string_view label, const std::optional<int>& number) {
        if (!label.empty() && number)
            text += (text.empty() ? "" : ", ") + std::string(label) + ' ' + std::to_string(*number);
    };
    for (const RankingCriterion& criterion : GetRankingCriteria()) {
        for (const PathFigure& figure : criterion.figures)
            add(figure.label, figure.get(alternative));
    }
    add("rank", alternative.rank);
    return text;
}

/// Returns a member whose section of the template is left out when the text is empty.
Data Optional(const std::string& text)
{
    return text.empty() ? Data(false) : Data(text);
}

Data List()
{
    return Data(Data::type::list);
}

/// Returns the lines of a text, which the template escapes one by one.
Data ToLines(const std::string& text)
{
    Data lines = List();
    std::istringstream in(text);
    in.exceptions(std::ios::badbit);
    for (std::string line; std::getline(in, line);)
        lines << Data(line);
    return lines;
}

/// The paths that a page offers: the ranked alternatives, and what else is as good as the path
/// that was taken.
class PagePaths
{
public:
    explicit PagePaths(const FormatInput& input) : mInput(input)
    {
        const Answer& answer = input.answer;
        const ListLimit limit = input.options.alternatives;
        for (std::size_t i = 0; i < limit.CountShown(answer.alternatives.size()); ++i)
            AddCandidate(i);
        if (answer.chosen && Find(answer.alternatives[*answer.chosen].joins) == mPaths.size())
            AddCandidate(*answer.chosen);
        for (const Ids& path : ListShownPaths(answer, limit)) {
            if (Find(path) == mPaths.size())
                Add({.joins = path});
        }
        const auto taken = ListShownPaths(answer, ListLimit(1));
        if (!taken.empty())
            mChosen = Find(taken.front());
        for (PagePath& path : mPaths) {
            path.saveCommand = MakeSaveCommand(path.joins);
            WriteSqlOf(path);
        }
    }

    [[nodiscard]] const std::vector<PagePath>& Get() const { return mPaths; }
    /// Returns the position of the path that was taken; 0 when there is none.
    [[nodiscard]] std::size_t GetChosen() const { return mChosen; }

private:
    /// Returns the position of the path, or the number of paths.
    [[nodiscard]] std::size_t Find(const Ids& joins) const
    {
        const auto found =
            std::find_if(mPaths.begin(), mPaths.end(),
                         [&joins](const PagePath& path) { return path.joins == joins; });
        return static_cast<std::size_t>(found - mPaths.begin());
    }

    /// Requires the joins that others of the paths do without.
    [[nodiscard]] std::string MakeSaveCommand(const Ids& joins) const
    {
        if (mInput.options.modelFile.empty() || mPaths.size() < 2 ||
            mInput.question.operation != EOperation::Path)
            return {};
        std::string command = "qerefine path " + ToShellWord(mInput.options.modelFile);
        for (const amd_id& subject : mInput.answer.terminals)
            command += ' ' + ToShellWord(mInput.answer.NameOf(subject));
        for (const amd_id& join : joins) {
            const bool isShared =
                std::all_of(mPaths.begin(), mPaths.end(), [&join](const PagePath& path) {
                    return std::count(path.joins.begin(), path.joins.end(), join) > 0;
                });
            if (!isShared && join.classCode != IdClassShortcutJoin)
                command += " --require " + ToShellWord(JoinName(*mInput.model.model, join));
        }
        return command + " --save";
    }

    void AddCandidate(std::size_t index)
    {
        const Alternative& candidate = mInput.answer.alternatives[index];
        Add({.joins = candidate.joins,
             .number = std::to_string(index + 1),
             .measure = DescribeMeasure(candidate)});
    }

    void Add(PagePath path)
    {
        path.risks = FindRisks(mInput.answer, path.joins, mInput.options.sql);
        mPaths.push_back(std::move(path));
    }

    void WriteSqlOf(PagePath& path) const
    {
        const bool isChosen = &path == &mPaths[mChosen];
        TextStream sql;
        WriteRemarks(sql,
                     isChosen ? ListRemarks(mInput.answer, path.risks)
                              : ListPathRemarks(mInput.answer, path.risks),
                     kSqlComment);
        try {
            sql << WriteSql(mInput.model, mInput.answer, path.joins, mInput.options.sql);
            path.sql = sql.str();
        } catch (const InputError& error) {
            path.sqlProblem = error.what();
        }
    }

    const FormatInput& mInput;
    std::vector<PagePath> mPaths;
    std::size_t mChosen = 0;
};

/// Fills the template.
class PageWriter
{
public:
    explicit PageWriter(const FormatInput& input)
        : mInput(input),
          mAnswer(input.answer),
          mPicture(DrawAnswer(input.model, input.answer,
                              PictureLimits{.alternatives = input.options.alternatives})),
          mPaths(input)
    {}

    void Write(std::ostream& out) const
    {
        kainjow::mustache::mustache page{std::string(kPageTemplate)};
        page.set_custom_escape(EscapeMarkup);
        page.render(Fill(), out);
    }

private:
    [[nodiscard]] Data Fill() const;
    void FillSummary(Data& page) const;
    static void FillPastQueries(Data& page, const std::vector<std::string>& queries);
    [[nodiscard]] Data MakeNames(const Ids& subjects) const;
    [[nodiscard]] Data MakePath(std::size_t index) const;
    [[nodiscard]] Data MakeJoin(const amd_id& id) const;
    [[nodiscard]] static Data MakeRemarks(const std::vector<RiskRemark>& remarks);
    [[nodiscard]] Data MakeRequest() const;
    [[nodiscard]] std::string InlineSvg() const;
    [[nodiscard]] std::string ScriptData() const;

    const FormatInput& mInput;
    const Answer& mAnswer;
    Picture mPicture;
    PagePaths mPaths;
};

Data PageWriter::Fill() const
{
    Data page;
    Ids asked = mAnswer.terminals;
    asked.insert(asked.end(), mAnswer.secondSet.begin(), mAnswer.secondSet.end());
    page.set("asked", MakeNames(asked));
    FillSummary(page);
    const std::size_t count = mPaths.Get().size();
    Data paths = List();
    for (std::size_t index = 0; index < count; ++index)
        paths << MakePath(index);
    page.set("paths", paths);
    page.set("hasPaths", count > 0);
    page.set("hasChoice", count > 1);
    const std::size_t candidates = mAnswer.alternatives.size();
    page.set("furtherAlternatives",
             Optional(count < candidates ? std::to_string(candidates - count) : ""));
    page.set("request", MakeRequest());
    if (mAnswer.pastUse)
        FillPastQueries(page, mAnswer.pastUse->queries);
    page.set("picture", InlineSvg());
    page.set("data", ScriptData());
    page.set("style", std::string(kPageStyle));
    page.set("script", std::string(kPageScript));
    return page;
}

void PageWriter::FillSummary(Data& page) const
{
    if (!mPaths.Get().empty())
        page.set("joinCount", std::to_string(mPaths.Get()[mPaths.GetChosen()].joins.size()));
    page.set("weight", Optional(mAnswer.weight ? std::to_string(*mAnswer.weight) : ""));
    page.set("criterion", Optional(DecisionText(mAnswer)));
    Data problems = List();
    for (const AnswerMessage& warning : mAnswer.warnings)
        problems << Data(warning.text);
    if (mAnswer.error)
        problems << Data(mAnswer.error->text);
    page.set("problems", problems);
    std::vector<RiskRemark> remarks;
    if (mAnswer.ambiguity)
        remarks.push_back(DescribeAmbiguity(mAnswer));
    page.set("ambiguity", MakeRemarks(remarks));
    Data notices = List();
    for (const std::string& notice : mAnswer.notices)
        notices << Data(notice);
    page.set("notices", notices);
    Data groups = List();
    for (const Ids& group : mAnswer.separation.groups)
        groups << Data("subjects", MakeNames(group));
    page.set("groups", groups);
    page.set("isSeparated", !mAnswer.separation.bridge.empty());
}

void PageWriter::FillPastQueries(Data& page, const std::vector<std::string>& queries)
{
    Data list = List();
    for (const std::string& query : queries)
        list << Data(ToDisplayText(query));
    page.set("pastQueries", list);
    page.set("pastQueryCount", Optional(queries.empty() ? "" : std::to_string(queries.size())));
}

Data PageWriter::MakeNames(const Ids& subjects) const
{
    Data names = List();
    for (const amd_id& subject : subjects) {
        Data name("name", mAnswer.NameOf(subject));
        name.set("isFirst", names.is_empty_list());
        names << name;
    }
    return names;
}

Data PageWriter::MakePath(std::size_t index) const
{
    const PagePath& path = mPaths.Get()[index];
    Data joins = List();
    for (const amd_id& id : path.joins) {
        Data join = MakeJoin(id);
        join.set("isFirst", joins.is_empty_list());
        joins << join;
    }
    Data data("index", std::to_string(index));
    data.set("isChosen", index == mPaths.GetChosen());
    data.set("number", Optional(path.number));
    data.set("measure", path.measure);
    data.set("rows", Optional(ToDisplayText(DescribeRows(mAnswer, path.risks))));
    data.set("outerJoins", Optional(ToDisplayText(DescribeOuterJoins(mAnswer, path.risks))));
    data.set("remarks", MakeRemarks(ListPathRemarks(mAnswer, path.risks)));
    data.set("joins", joins);
    data.set("sqlProblem", Optional(path.sqlProblem));
    data.set("sqlLines", ToLines(path.sql));
    data.set("saveCommand", Optional(path.saveCommand));
    return data;
}

Data PageWriter::MakeRemarks(const std::vector<RiskRemark>& remarks)
{
    Data list = List();
    for (const RiskRemark& remark : remarks) {
        Data data("title", ToTitle(remark.risk));
        data.set("text", ToDisplayText(remark.text));
        data.set("advice", Optional(ToDisplayText(remark.advice)));
        list << data;
    }
    return list;
}

Data PageWriter::MakeJoin(const amd_id& id) const
{
    const AnswerJoin* const join = mAnswer.FindJoin(id);
    Data data("kind", std::string(JoinKindTitle(id)));
    data.set("isKnown", join != nullptr);
    data.set("name", Optional(join == nullptr ? "" : join->name));
    if (join == nullptr)
        return data;
    data.set("left", mAnswer.NameOf(join->left));
    data.set("right", mAnswer.NameOf(join->right));
    data.set("leftCardinality", ToText(join->leftCardinality));
    data.set("rightCardinality", ToText(join->rightCardinality));
    data.set("isShortcut", join->condition.empty() && join->name.empty());
    data.set("condition", join->condition);
    return data;
}

Data PageWriter::MakeRequest() const
{
    Data rows = List();
    for (const auto& [title, value] : ListRequestRows(mInput.question, mAnswer)) {
        Data row("title", title);
        row.set("value", value);
        rows << row;
    }
    return rows;
}

std::string PageWriter::InlineSvg() const
{
    const std::string svg = MakeSvg(mPicture, {.signals = mInput.options.signals});
    const std::size_t begin = svg.find("<svg");
    return begin == std::string::npos ? std::string() : svg.substr(begin);
}

/// Returns what the page's script works on: the SQL of each path, the command that keeps it, and
/// the parts of the picture that show it.
std::string PageWriter::ScriptData() const
{
    using Json = nlohmann::ordered_json;
    Json data{{"chosen", mPaths.GetChosen()}, {"paths", Json::array()}};
    for (const PagePath& path : mPaths.Get()) {
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
        data["paths"].push_back(
            {{"sql", path.sql}, {"save", path.saveCommand}, {"parts", std::move(parts)}});
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
