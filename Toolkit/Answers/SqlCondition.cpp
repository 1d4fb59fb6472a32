#include "Toolkit/Answers/SqlCondition.h"

#include "AQE_Expression.h"
#include "AQE_ExpressionVisitorString.h"
#include "HBNException.h"
#include "Toolkit/Answers/SqlIdentifier.h"
#include "Toolkit/Text/InputError.h"

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

constexpr int kReferenceNode = 10;

[[noreturn]] void Reject(const AnswerJoin& join, const std::string& reason)
{
    const std::string name = join.name.empty() ? ToText(join.id) : join.name;
    throw InputError({{"join \"" + name + '"', reason, {}}});
}

void CollectReferences(AQE_ExpressionNode& node, std::vector<AQE_ExpressionNode*>& references)
{
    if (node.GetNodeType() == kReferenceNode)
        references.push_back(&node);
    for (AQE_ExpressionNode* const child : node.GetChildren())
        CollectReferences(*child, references);
}

/// Finds the tables that the references of one condition mean.
class ReferenceTables
{
public:
    ReferenceTables(const model::Model& model, const SqlTables& tables, const AnswerJoin& join)
        : mModel(model), mTables(tables), mJoin(join)
    {}

    /// Gives one subject for each reference.
    [[nodiscard]] std::vector<amd_id> Find(const std::vector<AQE_ExpressionNode*>& references) const
    {
        std::vector<amd_id> subjects;
        bool namesLeft = false;
        bool namesRight = false;
        for (const AQE_ExpressionNode* const reference : references) {
            subjects.push_back(FindEnd(*reference));
            namesLeft = namesLeft || subjects.back() == mJoin.left;
            namesRight = namesRight || subjects.back() == mJoin.right;
        }
        if (StandForTheSame() && namesLeft != namesRight) {
            for (std::size_t index = 0; index < subjects.size(); ++index) {
                if (subjects[index] == mJoin.left || subjects[index] == mJoin.right)
                    subjects[index] = index < subjects.size() / 2 ? mJoin.left : mJoin.right;
            }
        }
        return subjects;
    }

private:
    [[nodiscard]] bool StandForTheSame() const
    {
        return mModel.GetTarget(mJoin.left) == mModel.GetTarget(mJoin.right);
    }

    [[nodiscard]] amd_id FindEnd(const AQE_ExpressionNode& reference) const
    {
        const amd_id subject = FindSubject(reference);
        if (subject == mJoin.left || subject == mJoin.right)
            return subject;
        const amd_id target = mModel.GetTarget(subject);
        if (target.IsValid() && target == mModel.GetTarget(mJoin.left))
            return mJoin.left;
        if (target.IsValid() && target == mModel.GetTarget(mJoin.right))
            return mJoin.right;
        if (!mTables.Has(subject))
            Reject(mJoin,
                   "The condition refers to what the path does not touch: " + mJoin.condition);
        return subject;
    }

    /// Gives the subject that the reference resolved to, or the end of that name.
    [[nodiscard]] amd_id FindSubject(const AQE_ExpressionNode& reference) const
    {
        const amd_id resolved = reference.GetQuerySubjectId();
        const std::vector<I18NString> names = reference.GetNamePath();
        if (resolved.IsValid() || names.size() < 2)
            return resolved;
        const std::string& name = names[names.size() - 2].ToStdString();
        for (const amd_id& end : {mJoin.left, mJoin.right}) {
            if (mModel.Find(end)->name == name || mModel.Find(mModel.GetTarget(end))->name == name)
                return end;
        }
        return {};
    }

    const model::Model& mModel;
    const SqlTables& mTables;
    const AnswerJoin& mJoin;
};

/// Puts the columns in the place of the references "[0]", "[1]" and so on, which stand outside
/// quotes.
std::string PutColumns(const std::string& text, const std::vector<std::string>& columns)
{
    std::string result;
    bool isQuoted = false;
    for (std::size_t position = 0; position < text.size(); ++position) {
        const char letter = text[position];
        isQuoted ^= letter == '\'';
        if (isQuoted || letter != '[') {
            result += letter;
            continue;
        }
        const std::size_t end = text.find(']', position);
        result += columns[std::stoul(text.substr(position + 1, end - position - 1))];
        position = end;
    }
    return result;
}

std::unique_ptr<AQE_Expression> Parse(model::ModelGateway& gateway, const AnswerJoin& join)
{
    try {
        return std::unique_ptr<AQE_Expression>(
            AQE_Expression::Create(AQE_Expression::GetUntaggedExpression(join.condition), &gateway,
                                   join.name, gateway.GetLocale(join.id)));
    } catch (const HBNException& exception) {
        Reject(join, std::string("The condition cannot be read: ") + exception.what());
    }
}

} // namespace

std::string WriteSqlCondition(model::ModelGateway& gateway, const SqlTables& tables,
                              const AnswerJoin& join)
{
    if (join.condition.empty())
        Reject(join, "The join has no condition, so that no SQL can be written");
    if (join.condition.find('\0') != std::string::npos)
        Reject(join, "SQL cannot hold a condition with a zero in it");
    const std::unique_ptr<AQE_Expression> expression = Parse(gateway, join);
    std::vector<AQE_ExpressionNode*> references;
    CollectReferences(*expression, references);
    const std::vector<amd_id> subjects =
        ReferenceTables(gateway.GetModel(), tables, join).Find(references);

    std::vector<std::string> columns;
    for (std::size_t index = 0; index < references.size(); ++index) {
        const std::string column = references[index]->GetNamePath().back().ToStdString();
        columns.push_back(tables.Get(tables.IndexOf(subjects[index])).alias + '.' +
                          QuoteIdentifier(column));
        references[index]->SetNamePath({I18NString(std::to_string(index))});
    }
    AQE_ExpressionVisitorString writer(gateway.GetLocale(join.id));
    expression->Accept(writer);
    I18NString text;
    writer.GetText(text);
    return PutColumns(text.ToStdString(), columns);
}

} // namespace qe::tool
