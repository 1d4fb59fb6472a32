#include "Toolkit/Answers/AnswerSql.h"

#include "IdClass.h"
#include "Source/Rules/Cardinality.h"
#include "Toolkit/Answers/SqlCondition.h"
#include "Toolkit/Answers/SqlTables.h"
#include "Toolkit/Ask/PassedTables.h"
#include "Toolkit/Model/ToolModel.h"

#include <algorithm>
#include <cstddef>

namespace qe::tool {

namespace {

constexpr std::size_t kItemsOfSubject = 3;
constexpr std::size_t kNoTable = static_cast<std::size_t>(-1);

/// One join of the path, seen from one of its ends.
struct Step
{
    const AnswerJoin* join = nullptr;
    std::size_t to = 0;
    BMT_I_Association::CardinalityRange toCardinality{};
};

class SqlWriter
{
public:
    SqlWriter(const ToolModel& model, const Answer& answer, const std::vector<amd_id>& path,
              const SqlOptions& options);

    [[nodiscard]] std::string Write();

private:
    [[nodiscard]] std::string WriteSelect() const;
    void WriteFrom();
    void AddPart(std::size_t start);
    /// Adds the table that the next join of the path leads to; false when none leads further.
    bool AddNext();
    void AddTable(const Step& step);
    [[nodiscard]] std::vector<std::string> TakeConditions();

    [[nodiscard]] std::size_t ChooseStart() const;
    [[nodiscard]] int CountManySteps(std::size_t start) const;
    [[nodiscard]] std::size_t LeftOf(const AnswerJoin& join) const
    {
        return mTables.IndexOf(join.left);
    }
    [[nodiscard]] std::size_t RightOf(const AnswerJoin& join) const
    {
        return mTables.IndexOf(join.right);
    }
    /// Returns the step that the join allows from the tables that are in.
    [[nodiscard]] std::optional<Step> StepFrom(const std::vector<bool>& isIn,
                                               const AnswerJoin& join) const;
    [[nodiscard]] std::string TableText(std::size_t table) const;

    const model::Model& mModel;
    const Answer& mAnswer;
    const SqlOptions& mOptions;
    model::ModelGateway mGateway;
    SqlTables mTables;
    /// The joins that need conditions, in path order; those written are taken out.
    std::vector<const AnswerJoin*> mJoins;
    std::vector<bool> mIsIn;
    /// The tables whose rows may be missing.
    std::vector<bool> mIsOptional;
    std::string mText;
};

SqlWriter::SqlWriter(const ToolModel& model, const Answer& answer, const std::vector<amd_id>& path,
                     const SqlOptions& options)
    : mModel(*model.model),
      mAnswer(answer),
      mOptions(options),
      mGateway(model.model),
      mTables(mModel, answer, path),
      mIsIn(mTables.GetCount(), false),
      mIsOptional(mTables.GetCount(), false)
{
    for (const amd_id& id : path) {
        const AnswerJoin* const join = answer.FindJoin(id);
        if (join != nullptr && id.classCode != IdClassShortcutJoin)
            mJoins.push_back(join);
    }
}

std::string SqlWriter::Write()
{
    if (mTables.GetCount() == 0)
        return {};
    if (mOptions.select == SqlOptions::ESelect::FirstItems)
        mText = WriteSelect();
    WriteFrom();
    return mText;
}

std::string SqlWriter::WriteSelect() const
{
    std::string columns;
    AliasNames names;
    for (const amd_id& subject : mAnswer.terminals) {
        if (!mTables.Has(subject))
            continue;
        std::size_t count = 0;
        for (const amd_id& item : mModel.GetItems(subject)) {
            if (++count > kItemsOfSubject)
                break;
            const std::string& name = mModel.Find(item)->name;
            columns += (columns.empty() ? "" : ",\n       ") +
                       mTables.Get(mTables.IndexOf(subject)).alias + '.' + QuoteIdentifier(name) +
                       " AS " +
                       QuoteIdentifier(names.Take(mModel.Find(subject)->name + '.' + name));
        }
    }
    return "SELECT " + (columns.empty() ? "COUNT(*)" : columns) + '\n';
}

void SqlWriter::WriteFrom()
{
    AddPart(ChooseStart());
    for (std::size_t table = 0; table < mTables.GetCount(); ++table) {
        if (!mIsIn[table])
            AddPart(table);
    }
}

void SqlWriter::AddPart(std::size_t start)
{
    const bool isFirst = std::find(mIsIn.begin(), mIsIn.end(), true) == mIsIn.end();
    mText += (isFirst ? "FROM " : "  CROSS JOIN ") + TableText(start) + '\n';
    mIsIn[start] = true;
    while (AddNext()) {}
}

bool SqlWriter::AddNext()
{
    for (const AnswerJoin* const join : mJoins) {
        if (const auto step = StepFrom(mIsIn, *join)) {
            AddTable(*step);
            return true;
        }
    }
    return false;
}

void SqlWriter::AddTable(const Step& step)
{
    const std::size_t from =
        LeftOf(*step.join) == step.to ? RightOf(*step.join) : LeftOf(*step.join);
    const bool isOptional =
        mIsOptional[from] || step.toCardinality.minimum == BMT_I_Association::CardinalityZero;
    mIsOptional[step.to] =
        isOptional && mOptions.outerJoins == SqlOptions::EOuterJoins::ByCardinality;
    mText += (mIsOptional[step.to] ? "  LEFT OUTER JOIN " : "  INNER JOIN ") + TableText(step.to);
    mIsIn[step.to] = true;
    const char* separator = "\n    ON ";
    for (const std::string& condition : TakeConditions()) {
        mText += separator + condition;
        separator = "\n    AND ";
    }
    mText += '\n';
}

std::vector<std::string> SqlWriter::TakeConditions()
{
    // More than one join may lead to the new table, or close a cycle with it.
    std::vector<const AnswerJoin*> ready;
    std::vector<const AnswerJoin*> rest;
    for (const AnswerJoin* const join : mJoins)
        (mIsIn[LeftOf(*join)] && mIsIn[RightOf(*join)] ? ready : rest).push_back(join);
    mJoins = rest;
    std::vector<std::string> conditions;
    for (const AnswerJoin* const join : ready) {
        const std::string condition = WriteSqlCondition(mGateway, mTables, *join);
        conditions.push_back(ready.size() > 1 ? '(' + condition + ')' : condition);
    }
    return conditions;
}

std::size_t SqlWriter::ChooseStart() const
{
    if (mOptions.start && mTables.Has(*mOptions.start))
        return mTables.IndexOf(*mOptions.start);
    std::size_t best = kNoTable;
    int fewest = 0;
    for (std::size_t table = 0; table < mTables.GetCount(); ++table) {
        const int count = CountManySteps(table);
        if (best == kNoTable || count < fewest) {
            best = table;
            fewest = count;
        }
    }
    return best;
}

int SqlWriter::CountManySteps(std::size_t start) const
{
    std::vector<bool> isIn(mTables.GetCount(), false);
    isIn[start] = true;
    int count = 0;
    for (bool isGrowing = true; isGrowing;) {
        isGrowing = false;
        for (const AnswerJoin* const join : mJoins) {
            if (const auto step = StepFrom(isIn, *join)) {
                isIn[step->to] = true;
                isGrowing = true;
                count += IsToMany(step->toCardinality) ? 1 : 0;
            }
        }
    }
    // Starting apart from the joins would put them all behind a CROSS JOIN.
    return count + (std::count(isIn.begin(), isIn.end(), true) == 1 ? 1 : 0);
}

std::optional<Step> SqlWriter::StepFrom(const std::vector<bool>& isIn, const AnswerJoin& join) const
{
    const std::size_t left = LeftOf(join);
    const std::size_t right = RightOf(join);
    if (isIn[left] == isIn[right])
        return std::nullopt;
    return isIn[left] ? Step{&join, right, join.rightCardinality}
                      : Step{&join, left, join.leftCardinality};
}

std::string SqlWriter::TableText(std::size_t table) const
{
    const SqlTable& entry = mTables.Get(table);
    return entry.source == entry.alias ? entry.source : entry.source + " AS " + entry.alias;
}

} // namespace

std::string WriteSql(const ToolModel& model, const Answer& answer, const std::vector<amd_id>& path,
                     const SqlOptions& options)
{
    if (options.passedTables == SqlOptions::EPassedTables::Joined)
        return SqlWriter(model, answer, path, options).Write();
    const ShortenedPath shortened = SkipPassedTables(*model.model, answer, path);
    return SqlWriter(model, shortened.answer, shortened.joins, options).Write();
}

} // namespace qe::tool
