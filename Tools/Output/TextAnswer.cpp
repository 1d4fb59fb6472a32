#include "Tools/Output/TextAnswer.h"

#include "Tools/Output/DisplayText.h"
#include "Tools/Output/TextTable.h"

#include <algorithm>
#include <ostream>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;

std::string Count(std::size_t count, const char* singular, const char* plural)
{
    return std::to_string(count) + ' ' + (count == 1 ? singular : plural);
}

class TextAnswerWriter
{
public:
    TextAnswerWriter(std::ostream& out, const Question& question, const Answer& answer,
                     std::size_t maximumAlternatives)
        : mOut(out), mQuestion(question), mAnswer(answer), mMaximum(maximumAlternatives)
    {}

    void Write();

private:
    void WriteHeadline();
    void WriteSubjects();
    void WriteJoins(const Ids& path);
    void WriteAlternatives();
    void WriteSeparation();
    void WriteRemarks();

    [[nodiscard]] std::string Join(const Ids& subjects) const;
    [[nodiscard]] std::string JoinTitle(const amd_id& join) const;
    [[nodiscard]] std::string FactsText(const Alternative& alternative) const;
    [[nodiscard]] std::string PathText(const Alternative& alternative) const;
    [[nodiscard]] bool AsksForSeveral() const
    {
        return mQuestion.operation == EOperation::BestPaths ||
               mQuestion.operation == EOperation::BestPathsBetween;
    }

    std::ostream& mOut;
    const Question& mQuestion;
    const Answer& mAnswer;
    std::size_t mMaximum;
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
    WriteAlternatives();
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
        mOut << "     " << ToDisplayText(JoinTitle(id)) << " (" << JoinKindTitle(id) << ", weight "
             << join->weight << ")\n";
        if (!join->condition.empty())
            mOut << "     on " << ToDisplayText(join->condition) << '\n';
    }
}

void TextAnswerWriter::WriteAlternatives()
{
    if (mAnswer.alternatives.empty() || (AsksForSeveral() && mAnswer.bestPaths.size() == 1))
        return;
    using EAlign = TextTable::EAlign;
    TextTable table({{"", EAlign::Left},
                     {"#", EAlign::Right},
                     {"weight", EAlign::Right},
                     {"facts", EAlign::Right},
                     {"branches", EAlign::Right},
                     {"rank", EAlign::Right},
                     {"joins", EAlign::Left}});
    const auto addRow = [&](std::size_t index) {
        const Alternative& alternative = mAnswer.alternatives[index];
        table.AddRow({mAnswer.chosen == index ? "*" : "", std::to_string(index + 1),
                      std::to_string(alternative.weight), FactsText(alternative),
                      std::to_string(alternative.branches),
                      alternative.rank ? std::to_string(*alternative.rank) : "-",
                      PathText(alternative)});
    };
    const std::size_t shown = std::min(mMaximum, mAnswer.alternatives.size());
    for (std::size_t index = 0; index < shown; ++index)
        addRow(index);
    if (mAnswer.chosen && *mAnswer.chosen >= shown)
        addRow(*mAnswer.chosen);
    mOut << '\n' << Count(mAnswer.alternatives.size(), "candidate", "candidates");
    if (shown < mAnswer.alternatives.size())
        mOut << ", the first " << shown << " of them";
    mOut << '\n';
    table.Write(mOut, "  ");
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

std::string TextAnswerWriter::JoinTitle(const amd_id& join) const
{
    const AnswerJoin* const known = mAnswer.FindJoin(join);
    return known == nullptr || known->name.empty() ? ToText(join) : known->name;
}

std::string TextAnswerWriter::FactsText(const Alternative& alternative) const
{
    std::string text = alternative.factTables ? std::to_string(*alternative.factTables) : "?";
    if (alternative.manyToManyJoins > 0)
        text += '+' + std::to_string(alternative.manyToManyJoins) + " m:n";
    return text;
}

std::string TextAnswerWriter::PathText(const Alternative& alternative) const
{
    std::string text;
    for (const amd_id& join : alternative.joins)
        text += (text.empty() ? "" : ", ") + JoinTitle(join);
    return text;
}

} // namespace

void WriteText(std::ostream& out, const Question& question, const Answer& answer,
               std::size_t maximumAlternatives)
{
    TextAnswerWriter(out, question, answer, maximumAlternatives).Write();
}

} // namespace qe::tool
