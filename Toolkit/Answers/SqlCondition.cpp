#include "Toolkit/Answers/SqlCondition.h"

#include "AQE_Expression.h"
#include "HBNException.h"
#include "IdClass.h"
#include "Source/Rules/JoinEnds.h"
#include "Toolkit/Answers/DialectPrinter.h"
#include "Toolkit/Answers/SqlTables.h"
#include "Toolkit/Text/InputFile.h"

#include <cstddef>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace qe::tool {

namespace {

constexpr int kReferenceNode = static_cast<int>(expression::ENodeKind::Reference);

using References = std::vector<const AQE_ExpressionNode*>;
using SubjectsByReference = std::map<const AQE_ExpressionNode*, amd_id>;

[[noreturn]] void Reject(const AnswerJoin& join, const std::string& reason)
{
    const std::string name = join.name.empty() ? ToText(join.id) : join.name;
    throw InputError({{"join \"" + name + '"', reason, {}}});
}

/// Appends the references below the node, in reading order.
void CollectReferences(const AQE_ExpressionNode& node, References& references)
{
    if (node.GetNodeType() == kReferenceNode)
        references.push_back(&node);
    for (const AQE_ExpressionNode* const child : node.GetChildren())
        CollectReferences(*child, references);
}

/// Finds the tables that the references of one condition mean.
class ReferenceTables
{
public:
    ReferenceTables(const model::Model& model, const SqlTables& tables, const AnswerJoin& join)
        : mModel(model), mTables(tables), mJoin(join)
    {}

    /// Returns the subject whose table each reference of the condition means.
    [[nodiscard]] SubjectsByReference Find(const AQE_ExpressionNode& condition) const
    {
        References references;
        CollectReferences(condition, references);
        SubjectsByReference subjects;
        bool namesLeft = false;
        bool namesRight = false;
        for (const AQE_ExpressionNode* const reference : references) {
            const amd_id& subject = subjects[reference] = FindEnd(*reference);
            namesLeft = namesLeft || subject == mJoin.left;
            namesRight = namesRight || subject == mJoin.right;
        }
        if (StandForTheSame() && namesLeft != namesRight)
            SplitBetweenEnds(references, subjects);
        return subjects;
    }

private:
    /// Splits the references to the one end that is named between both ends.
    void SplitBetweenEnds(const References& references, SubjectsByReference& subjects) const
    {
        const std::size_t leftReferences = CountLeftReferences(references.size());
        for (std::size_t index = 0; index < references.size(); ++index) {
            amd_id& subject = subjects[references[index]];
            if (subject == mJoin.left || subject == mJoin.right)
                subject = index < leftReferences ? mJoin.left : mJoin.right;
        }
    }

    [[nodiscard]] bool StandForTheSame() const
    {
        return mModel.GetTarget(mJoin.left) == mModel.GetTarget(mJoin.right);
    }

    [[nodiscard]] amd_id FindEnd(const AQE_ExpressionNode& reference) const
    {
        const amd_id referenced = reference.GetReferencedId();
        if (referenced.IsValid() && referenced.classCode != IdClassQueryItem)
            Reject(mJoin, "The condition refers to the " +
                              std::string(model::ClassTitle(referenced.classCode)) + " \"" +
                              mModel.Find(referenced)->name +
                              "\", where an item is needed: " + mJoin.condition);
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

    /// Returns the subject that the reference resolved to, or the end of that name.
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

/// Writes a condition whose references are columns of the tables of a statement.
class SqlConditionPrinter final : public DialectPrinter
{
public:
    /// Appends to `out`; everything referred to must outlive the printer.
    SqlConditionPrinter(const SqlTables& tables, const SubjectsByReference& subjects,
                        std::string& out)
        : DialectPrinter(tables.GetDialect(),
                         tables.IsForeign() ? ESource::Elsewhere : ESource::SameDialect, out),
          mTables(tables),
          mSubjects(subjects)
    {}

private:
    void PrintReference(const AQE_ExpressionNode& reference) override
    {
        PrintText(mTables.WriteColumn(mSubjects.at(&reference),
                                      reference.GetNamePath().back().ToStdString()));
    }

    const SqlTables& mTables;
    const SubjectsByReference& mSubjects;
};

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
    const SubjectsByReference subjects =
        ReferenceTables(gateway.GetModel(), tables, join).Find(*expression);
    std::string text;
    try {
        SqlConditionPrinter(tables, subjects, text).PrintCondition(*expression);
    } catch (const std::length_error&) {
        Reject(join, "The condition cannot be written for " +
                         std::string(tables.GetDialect().name) +
                         ", which has no truth values: " + join.condition);
    }
    return text;
}

} // namespace qe::tool
