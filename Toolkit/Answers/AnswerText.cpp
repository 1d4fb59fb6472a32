#include "Toolkit/Answers/AnswerText.h"

#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/TextTable.h"

#include <ostream>

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

std::string FactsText(const Alternative& alternative)
{
    std::string text = alternative.factTables ? std::to_string(*alternative.factTables) : "?";
    if (alternative.manyToManyJoins > 0)
        text += '+' + std::to_string(alternative.manyToManyJoins) + " m:n";
    return text;
}

std::string PathText(const Answer& answer, const Alternative& alternative)
{
    std::string text;
    for (const amd_id& join : alternative.joins)
        text += (text.empty() ? "" : ", ") + JoinTitle(answer, join);
    return text;
}

class TextAnswerWriter
{
public:
    TextAnswerWriter(std::ostream& out, const Question& question, const Answer& answer,
                     ListLimit alternatives)
        : mOut(out), mQuestion(question), mAnswer(answer), mLimit(alternatives)
    {}

    void Write();

private:
    void WriteHeadline();
    void WriteSubjects();
    void WriteJoins(const Ids& path);
    void WriteCandidates();
    void WriteSeparation();
    void WriteRemarks();

    [[nodiscard]] std::string Join(const Ids& subjects) const;
    [[nodiscard]] bool AsksForSeveral() const
    {
        return mQuestion.operation == EOperation::BestPaths ||
               mQuestion.operation == EOperation::BestPathsBetween;
    }

    std::ostream& mOut;
    const Question& mQuestion;
    const Answer& mAnswer;
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
    WriteSeparation();
    WriteRemarks();
}

void TextAnswerWriter::WriteHeadline()
{
    if (mQuestion.operation == EOperation::JoinedSubjects) {
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
    if (mAnswer.criterion != ECriterion::None)
        mOut << "Decided by: " << ToText(mAnswer.criterion) << '\n';
    if (mAnswer.mainObject.IsValid())
        mOut << "Main object: " << ToDisplayText(mAnswer.NameOf(mAnswer.mainObject)) << '\n';
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

void TextAnswerWriter::WriteRemarks()
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
    std::string text;
    for (const amd_id& subject : subjects)
        text += (text.empty() ? "" : ", ") + ToDisplayText(mAnswer.NameOf(subject));
    return text;
}

} // namespace

void WriteText(std::ostream& out, const Question& question, const Answer& answer,
               ListLimit alternatives)
{
    TextAnswerWriter(out, question, answer, alternatives).Write();
}

void WriteAlternatives(std::ostream& out, const Answer& answer, ListLimit alternatives)
{
    using EAlign = TextTable::EAlign;
    TextTable table({{"", EAlign::Left},
                     {"#", EAlign::Right},
                     {"weight", EAlign::Right},
                     {"facts", EAlign::Right},
                     {"branches", EAlign::Right},
                     {"rank", EAlign::Right},
                     {"joins", EAlign::Left}});
    const auto addRow = [&](std::size_t index) {
        const Alternative& alternative = answer.alternatives[index];
        table.AddRow({answer.chosen == index ? "*" : "", std::to_string(index + 1),
                      std::to_string(alternative.weight), FactsText(alternative),
                      std::to_string(alternative.branches),
                      alternative.rank ? std::to_string(*alternative.rank) : "-",
                      PathText(answer, alternative)});
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
