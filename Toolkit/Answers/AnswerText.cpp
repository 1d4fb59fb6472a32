#include "Toolkit/Answers/AnswerText.h"

#include "Source/Rules/RankingCriteria.h"
#include "Toolkit/Answers/RiskText.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/TextTable.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;

std::string Count(std::size_t count, const char* singular, const char* plural)
{
    return std::to_string(count) + ' ' + (count == 1 ? singular : plural);
}

std::string JoinTitle(const Answer& answer, const amd_id& join)
{
    const AnswerJoin* const known = answer.FindJoin(join);
    return known == nullptr || known->name.empty() ? ToText(join) : known->name;
}

std::string PathText(const Answer& answer, const Alternative& alternative)
{
    return JoinTexts(alternative.joins,
                     [&answer](const amd_id& join) { return JoinTitle(answer, join); });
}

} // namespace

std::string DescribeDecision(const AnswerDecision& decision)
{
    constexpr std::size_t kShown = 5;
    std::string text =
        decision.subjects.empty() ? "Everywhere" : "For " + JoinTexts(decision.subjects);
    const char* separator = " the model ";
    const auto add = [&](const char* verb, const std::vector<std::string>& joins) {
        if (joins.empty())
            return;
        text += separator + (verb + JoinFirstTexts(joins, kShown));
        separator = " and ";
    };
    add("prefers ", decision.preferred);
    add("avoids ", decision.avoided);
    return decision.reason.empty() ? text : text + ": " + decision.reason;
}

namespace {

class TextAnswerWriter
{
public:
    TextAnswerWriter(std::ostream& out, const Question& question, const Answer& answer,
                     const Risks& risks, ListLimit alternatives)
        : mOut(out), mQuestion(question), mAnswer(answer), mRisks(risks), mLimit(alternatives)
    {}

    void Write();

private:
    void WriteHeadline();
    void WriteSubjects();
    void WriteJoins(const Ids& path);
    void WriteCandidates();
    void WriteDecisions();
    void WriteSeparation();
    void WriteRisks();
    void WriteMessages();

    [[nodiscard]] std::string Join(const Ids& subjects) const;
    [[nodiscard]] bool AsksForSeveral() const
    {
        return mQuestion.operation == EOperation::BestPaths ||
               mQuestion.operation == EOperation::BestPathsBetween;
    }

    std::ostream& mOut;
    const Question& mQuestion;
    const Answer& mAnswer;
    const Risks& mRisks;
    ListLimit mLimit;
};

void TextAnswerWriter::Write()
{
    WriteHeadline();
    if (mQuestion.operation == EOperation::JoinedSubjects)
        WriteSubjects();
    if (!AsksForSeveral())
        WriteJoins(mAnswer.path);
    else if (mAnswer.bestPaths.size() == 1)
        WriteJoins(mAnswer.bestPaths.front());
    WriteCandidates();
    WriteDecisions();
    WriteSeparation();
    WriteRisks();
    WriteMessages();
}

void TextAnswerWriter::WriteHeadline()
{
    const bool asksForOne = mAnswer.terminals.size() == 1 && mAnswer.secondSet.empty();
    if (asksForOne && mAnswer.connected && !mAnswer.error) {
        mOut << "Nothing to join: " << Join(mAnswer.terminals) << " stands alone\n";
    } else if (mQuestion.operation == EOperation::JoinedSubjects) {
        mOut << Count(mAnswer.joinedSubjects.size(), "joined subject", "joined subjects") << '\n';
    } else if (AsksForSeveral()) {
        mOut << Count(mAnswer.bestPaths.size(), "best path", "best paths");
        if (mAnswer.weight)
            mOut << ", weight " << *mAnswer.weight;
        mOut << '\n';
    } else {
        mOut << (mAnswer.path.empty() ? "No path"
                                      : "Path of " + Count(mAnswer.path.size(), "join", "joins"));
        if (mAnswer.weight)
            mOut << ", weight " << *mAnswer.weight;
        mOut << '\n';
    }
    for (const auto& pair : mAnswer.endPairs)
        mOut << "From " << ToDisplayText(mAnswer.NameOf(pair.first)) << " to "
             << ToDisplayText(mAnswer.NameOf(pair.second)) << '\n';
}

void TextAnswerWriter::WriteSubjects()
{
    for (const amd_id& subject : mAnswer.joinedSubjects)
        mOut << "  " << ToDisplayText(mAnswer.NameOf(subject)) << '\n';
}

void TextAnswerWriter::WriteJoins(const Ids& path)
{
    std::size_t number = 0;
    for (const amd_id& id : path) {
        const AnswerJoin* const join = mAnswer.FindJoin(id);
        if (join == nullptr)
            continue;
        mOut << "  " << ++number << ". " << ToDisplayText(mAnswer.NameOf(join->left)) << ' '
             << ToText(join->leftCardinality) << " -- " << ToText(join->rightCardinality) << ' '
             << ToDisplayText(mAnswer.NameOf(join->right)) << '\n';
        mOut << "     " << ToDisplayText(JoinTitle(mAnswer, id)) << " (" << JoinKindTitle(id)
             << ", weight " << join->weight << ")\n";
        if (!join->condition.empty())
            mOut << "     on " << ToDisplayText(join->condition) << '\n';
    }
}

void TextAnswerWriter::WriteCandidates()
{
    if (mAnswer.alternatives.empty())
        return;
    mOut << '\n';
    WriteAlternatives(mOut, mAnswer, mLimit);
    if (!mAnswer.criterion.empty())
        mOut << "Decided by: " << mAnswer.criterion << '\n';
    if (mAnswer.mainObject.IsValid())
        mOut << "Main object: " << ToDisplayText(mAnswer.NameOf(mAnswer.mainObject)) << '\n';
}

void TextAnswerWriter::WriteDecisions()
{
    for (const AnswerDecision& decision : mAnswer.decisions)
        mOut << ToDisplayText(DescribeDecision(decision)) << '\n';
}

void TextAnswerWriter::WriteSeparation()
{
    const auto& groups = mAnswer.separation.groups;
    if (mAnswer.connected || groups.empty())
        return;
    mOut << '\n';
    if (groups.size() == 1) {
        mOut << "The subjects are in one group, but no path is allowed between them.\n";
        return;
    }
    mOut << "The subjects cannot be connected. They fall into " << groups.size() << " groups:\n";
    std::size_t number = 0;
    for (const Ids& group : groups)
        mOut << "  " << ++number << ". " << Join(group) << '\n';
    mOut << "Joining these " << mAnswer.separation.bridge.size()
         << " would connect all: " << Join(mAnswer.separation.bridge) << '\n';
}

void TextAnswerWriter::WriteRisks()
{
    const std::vector<RiskRemark> remarks = ListRemarks(mAnswer, mRisks);
    const std::string rows = DescribeRows(mAnswer, mRisks);
    const std::string outerJoins = DescribeOuterJoins(mAnswer, mRisks);
    if (remarks.empty() && rows.empty() && outerJoins.empty())
        return;
    mOut << '\n';
    if (!rows.empty())
        mOut << "Rows: " << ToDisplayText(rows) << '\n';
    if (!outerJoins.empty())
        mOut << "Outer joins: " << ToDisplayText(outerJoins) << '\n';
    WriteRemarks(mOut, remarks, "");
}

void TextAnswerWriter::WriteMessages()
{
    if (!mAnswer.warnings.empty() || !mAnswer.notices.empty())
        mOut << '\n';
    for (const AnswerMessage& warning : mAnswer.warnings)
        mOut << "Warning: " << ToDisplayText(warning.text) << '\n';
    for (const std::string& notice : mAnswer.notices)
        mOut << "Notice: " << ToDisplayText(notice) << '\n';
}

std::string TextAnswerWriter::Join(const Ids& subjects) const
{
    return JoinTexts(
        subjects, [this](const amd_id& subject) { return ToDisplayText(mAnswer.NameOf(subject)); });
}

} // namespace

void WriteText(std::ostream& out, const Question& question, const Answer& answer,
               const Risks& risks, ListLimit alternatives)
{
    TextAnswerWriter(out, question, answer, risks, alternatives).Write();
}

void WriteAlternatives(std::ostream& out, const Answer& answer, ListLimit alternatives)
{
    using EAlign = TextTable::EAlign;
    std::vector<TextTable::Column> columns{{"", EAlign::Left}, {"#", EAlign::Right}};
    for (const RankingCriterion& criterion : GetRankingCriteria())
        columns.push_back({std::string(criterion.column), EAlign::Right});
    columns.push_back({"rank", EAlign::Right});
    columns.push_back({"joins", EAlign::Left});
    TextTable table(std::move(columns));
    const auto addRow = [&](std::size_t index) {
        const Alternative& alternative = answer.alternatives[index];
        std::vector<std::string> cells{answer.chosen == index ? "*" : "",
                                       std::to_string(index + 1)};
        for (const RankingCriterion& criterion : GetRankingCriteria())
            cells.push_back(criterion.writeCell(alternative));
        cells.push_back(alternative.rank ? std::to_string(*alternative.rank) : "-");
        cells.push_back(PathText(answer, alternative));
        table.AddRow(std::move(cells));
    };
    const std::size_t shown = alternatives.CountShown(answer.alternatives.size());
    for (std::size_t index = 0; index < shown; ++index)
        addRow(index);
    if (answer.chosen && *answer.chosen >= shown)
        addRow(*answer.chosen);
    out << Count(answer.alternatives.size(), "candidate", "candidates");
    if (shown < answer.alternatives.size())
        out << ", the first " << shown << " of them";
    out << '\n';
    table.Write(out, "  ");
}

} // namespace qe::tool
