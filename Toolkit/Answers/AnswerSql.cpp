#include "Toolkit/Answers/AnswerSql.h"

#include "Toolkit/Answers/SqlCondition.h"
#include "Toolkit/Answers/SqlTables.h"
#include "Toolkit/Ask/PassedTables.h"
#include "Toolkit/Model/ToolModel.h"

#include <cstddef>

namespace qe::tool {

namespace {

constexpr std::size_t kItemsOfSubject = 3;

const SqlDialect& ChooseDialect(const ToolModel& model, const SqlOptions& options)
{
    if (options.dialect != nullptr)
        return *options.dialect;
    const SqlDialect* const own = model.writtenNames.dialect;
    return own == nullptr ? GetUsualSqlDialect() : *own;
}

class SqlWriter
{
public:
    SqlWriter(const ToolModel& model, const Answer& answer, const std::vector<amd_id>& path,
              const SqlOptions& options)
        : mModel(*model.model),
          mAnswer(answer),
          mOptions(options),
          mGateway(model.model),
          mPath(answer, path),
          mTables(model, mPath, ChooseDialect(model, options))
    {}

    [[nodiscard]] std::string Write();

private:
    [[nodiscard]] std::string WriteSelect() const;
    [[nodiscard]] std::string WriteStep(const JoinStep& step, bool isFirst);
    [[nodiscard]] std::string WriteConditions(const JoinStep& step);
    [[nodiscard]] std::string TableText(std::size_t table) const;

    const model::Model& mModel;
    const Answer& mAnswer;
    const SqlOptions& mOptions;
    model::ModelGateway mGateway;
    PathTables mPath;
    SqlTables mTables;
};

std::string SqlWriter::Write()
{
    const std::vector<JoinStep> steps = PlanJoins(mPath, mOptions);
    std::string text;
    if (!steps.empty() && mOptions.select == SqlOptions::ESelect::FirstItems)
        text = WriteSelect();
    for (const JoinStep& step : steps)
        text += WriteStep(step, &step == &steps.front());
    return text;
}

std::string SqlWriter::WriteSelect() const
{
    std::string columns;
    AliasNames names(mTables.GetDialect());
    for (const amd_id& subject : mAnswer.terminals) {
        if (!mPath.Has(subject))
            continue;
        std::size_t count = 0;
        for (const amd_id& item : mModel.GetItems(subject)) {
            if (++count > kItemsOfSubject)
                break;
            const std::string& name = mModel.Find(item)->name;
            columns += (columns.empty() ? "" : ",\n       ") + mTables.WriteColumn(subject, name) +
                       " AS " +
                       mTables.WriteAlias(names.Take(mModel.Find(subject)->name + '.' + name));
        }
    }
    return "SELECT " + (columns.empty() ? "COUNT(*)" : columns) + '\n';
}

std::string SqlWriter::WriteStep(const JoinStep& step, bool isFirst)
{
    const std::string table = TableText(step.table);
    if (!step.from)
        return (isFirst ? "FROM " : "  CROSS JOIN ") + table + '\n';
    return (step.isOuter ? "  LEFT OUTER JOIN " : "  INNER JOIN ") + table + WriteConditions(step) +
           '\n';
}

std::string SqlWriter::WriteConditions(const JoinStep& step)
{
    std::string text;
    const char* separator = "\n    ON ";
    for (const TableJoin& join : step.joins) {
        const std::string condition = WriteSqlCondition(mGateway, mTables, *join.join);
        text += separator + (step.joins.size() > 1 ? '(' + condition + ')' : condition);
        separator = "\n    AND ";
    }
    return text;
}

std::string SqlWriter::TableText(std::size_t table) const
{
    const SqlTable& entry = mTables.Get(table);
    if (entry.source == entry.alias)
        return entry.source;
    return entry.source + std::string(mTables.GetDialect().names.tableAlias) + entry.alias;
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
