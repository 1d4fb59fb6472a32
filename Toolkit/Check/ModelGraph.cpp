#include "Toolkit/Check/ModelGraph.h"

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "AQE_RequestContext.h"
#include "Engine/Model/Model.h"
#include "Toolkit/Model/ToolModel.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <memory>
#include <new>
#include <span>

namespace qe::tool {

ModelGraph::ModelGraph(const ToolModel& model, const JoinHistory* history)
    : mToolModel(&model),
      mGateway(model.model),
      mHistory(history),
      mSubjects(model.model->GetSubjects())
{
    for (std::size_t i = 0; i < mSubjects.size(); ++i)
        mPositions.emplace(mSubjects[i], i);
    ReadJoins(model);
    AddShortcutJoins(model);
    ListSteps();
    CountNames();
}

void ModelGraph::ReadJoins(const ToolModel& model)
{
    for (const amd_id& id : model.model->GetJoins()) {
        AQE_I_Refiner::QEjoinInfo info;
        const bool isRead = AQE_I_Refiner::GetJoinInfo(&mGateway, nullptr, id, info);
        const auto left = mPositions.find(info.leftQuerySubject);
        const auto right = mPositions.find(info.rightQuerySubject);
        if (!isRead || left == mPositions.end() || right == mPositions.end()) {
            mUnreadableJoins.push_back(id);
            continue;
        }
        mJoins.push_back({.id = id,
                          .name = info.name.ToStdString(),
                          .left = left->second,
                          .right = right->second,
                          .weight = info.weight,
                          .leftCardinality = info.leftCardinality,
                          .rightCardinality = info.rightCardinality,
                          .condition = info.expression.ToStdString()});
    }
}

void ModelGraph::AddShortcutJoins(const ToolModel& model)
{
    AQE_Governors governors = model.governors;
    const std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> shortcuts(
        AQE_I_QuerySubjectShortcutInfo::Create(&mGateway, &governors, nullptr));
    // The library's way to say that there is no memory for it.
    if (shortcuts == nullptr)
        throw std::bad_alloc();
    const std::span<const amd_id> joins = model.model->GetJoins();
    shortcuts->Initialize({mSubjects.begin(), mSubjects.end()}, {joins.begin(), joins.end()}, {});
    for (const AQE_I_Refiner::QEjoinInfo& info : shortcuts->GetShortcutJoins()) {
        const auto left = mPositions.find(info.leftQuerySubject);
        const auto right = mPositions.find(info.rightQuerySubject);
        if (left == mPositions.end() || right == mPositions.end())
            continue;
        mJoins.push_back({.id = info.joinId,
                          .left = left->second,
                          .right = right->second,
                          .weight = info.weight,
                          .leftCardinality = info.leftCardinality,
                          .rightCardinality = info.rightCardinality});
    }
}

void ModelGraph::ListSteps()
{
    std::vector<std::vector<Step>> steps(mSubjects.size());
    for (std::size_t i = 0; i < mJoins.size(); ++i) {
        const ModelJoin& join = mJoins[i];
        if (join.left == join.right)
            continue;
        steps[join.left].push_back({join.right, i});
        steps[join.right].push_back({join.left, i});
    }
    for (const std::vector<Step>& ofSubject : steps) {
        mFirstSteps.push_back(mSteps.size());
        mSteps.insert(mSteps.end(), ofSubject.begin(), ofSubject.end());
    }
    mFirstSteps.push_back(mSteps.size());
}

void ModelGraph::CountNames()
{
    for (const amd_id& id : mSubjects)
        ++mNameCounts[GetModel().Find(id)->name];
}

std::span<const ModelGraph::Step> ModelGraph::GetSteps(std::size_t subject) const
{
    const std::size_t first = mFirstSteps[subject];
    return std::span(mSteps).subspan(first, mFirstSteps[subject + 1] - first);
}

std::string ModelGraph::NameOf(const amd_id& id) const
{
    const model::ObjectRecord* const record = GetModel().Find(id);
    if (record == nullptr)
        return ToText(id);
    const auto count = mNameCounts.find(record->name);
    const bool isAlone = count == mNameCounts.end() || count->second == 1;
    return isAlone ? record->name : model::ToText(GetModel().GetQualifiedName(id));
}

std::string ModelGraph::NameOf(std::size_t subject) const
{
    return NameOf(mSubjects[subject]);
}

std::string ListNames(const ModelGraph& model, const std::vector<std::size_t>& subjects,
                      std::size_t limit)
{
    std::vector<std::string> names;
    names.reserve(subjects.size());
    for (const std::size_t subject : subjects)
        names.push_back(model.NameOf(subject));
    return JoinFirstTexts(names, limit);
}

} // namespace qe::tool
