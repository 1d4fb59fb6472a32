#include "Toolkit/Ask/Reports.h"

#include "AQE_I_FactFinder.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "Engine/Model/Model.h"
#include "Engine/Model/ModelGateway.h"
#include "HBNException.h"
#include "IdClass.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Ask/RequestBasis.h"
#include "Toolkit/Ask/ResolvedQuestion.h"
#include "Toolkit/Ask/Risks.h"
#include "Toolkit/Model/ToolModel.h"

namespace qe::tool {
namespace {

std::string DescribeFailure(const HBNException& exception)
{
    return exception.GetMessages().empty()
               ? exception.what()
               : exception.GetMessages().front().GetText().ToStdString();
}

} // namespace

FactReport FindFacts(const std::vector<AnswerJoin>& joins)
{
    const AUT_RefPtr<AQE_I_FactFinder> finder = AQE_I_FactFinder::Create();
    FactReport report;
    for (const AnswerJoin& join : joins) {
        try {
            finder->AddJoin(join.id, join.left, join.leftCardinality.maximum, join.right,
                            join.rightCardinality.maximum);
        } catch (const HBNException& exception) {
            report.problems.push_back({join.id, DescribeFailure(exception)});
        }
    }
    std::vector<amd_id> facts;
    finder->GetFacts(facts);
    for (const amd_id& subject : facts) {
        FactReport::Fact& fact = report.facts.emplace_back(FactReport::Fact{subject});
        finder->GetDimensions(subject, &fact.ownDimensions, false);
        finder->GetDimensions(subject, &fact.allDimensions, true);
    }
    finder->GetSharedDimensions(report.sharedDimensions);
    return report;
}

FactReport FindPathFacts(const Answer& answer)
{
    std::vector<AnswerJoin> joins;
    for (const amd_id& join : GetAnsweredPath(answer))
        joins.push_back(*answer.FindJoin(join));
    return FindFacts(joins);
}

std::vector<AnswerJoin> ReadJoins(const ToolModel& model)
{
    model::ModelGateway gateway(model.model);
    std::vector<AnswerJoin> joins;
    for (const amd_id& id : model.model->GetJoins()) {
        AQE_I_Refiner::QEjoinInfo info;
        if (AQE_I_Refiner::GetJoinInfo(&gateway, nullptr, id, info))
            joins.push_back(ToAnswerJoin(info));
    }
    return joins;
}

ShortcutReport FindShortcuts(const ToolModel& model, const Question& question)
{
    const ResolvedQuestion resolved = QuestionResolver(*model.model).Resolve(question);
    RequestBasis basis(model, question, resolved);
    AQE_I_QuerySubjectShortcutInfo& shortcuts = basis.GetShortcutInfo();
    ShortcutReport report;
    for (const amd_id& node : resolved.nodes) {
        if (node.classCode != IdClassShortcut)
            continue;
        const amd_id key = shortcuts.GetGroupKey(node);
        if (key == node)
            report.ungrouped.push_back(node);
        else
            report.groups[key].push_back(node);
    }
    // A shortcut that is the key of others is in their group.
    std::erase_if(report.ungrouped,
                  [&report](const amd_id& shortcut) { return report.groups.count(shortcut) != 0; });
    for (const AQE_I_Refiner::QEjoinInfo& join : shortcuts.GetShortcutJoins())
        report.joins.push_back({join.joinId, join.leftQuerySubject, join.rightQuerySubject});
    return report;
}

} // namespace qe::tool
