#include "Toolkit/Ask/RequestBasis.h"

#include "AQE_JoinCache.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Ask/ResolvedQuestion.h"
#include "Toolkit/Model/ToolModel.h"

#include <new>

namespace qe::tool {

namespace {

AQE_Governors ChooseGovernors(const AQE_Governors& ofModel, const GovernorChoice& choice)
{
    AQE_Governors governors = ofModel;
    governors.crossProductAllowed = choice.crossProduct.value_or(ofModel.crossProductAllowed);
    governors.shortcutGrouping = choice.grouping.value_or(ofModel.shortcutGrouping);
    return governors;
}

} // namespace

RequestBasis::RequestBasis(const ToolModel& model, const Question& question,
                           const ResolvedQuestion& resolved)
    : mNodes(resolved.nodes),
      mJoins(resolved.joins),
      mRequiredJoins(resolved.requiredJoins),
      mUserClasses(model.userClasses),
      mGateway(model.model),
      mGovernors(ChooseGovernors(model.governors, question.governors)),
      mContext(question.commandType),
      mShortcutInfo(AQE_I_QuerySubjectShortcutInfo::Create(&mGateway, &mGovernors, &mContext))
{
    // The library's way to say that there is no memory for it.
    if (mShortcutInfo == nullptr)
        throw std::bad_alloc();
    mContext.SetJoinCache(std::make_unique<AQE_JoinCache>());
    mContext.SetAuthentication(&mUserClasses);
}

RequestBasis::~RequestBasis() = default;

bool RequestBasis::Fits(const ToolModel& model, const Question& question,
                        const ResolvedQuestion& resolved) const
{
    const AQE_Governors governors = ChooseGovernors(model.governors, question.governors);
    std::vector<amd_id> path;
    return governors.crossProductAllowed == mGovernors.crossProductAllowed &&
           governors.shortcutGrouping == mGovernors.shortcutGrouping &&
           question.commandType == mContext.GetCommandType() && resolved.nodes == mNodes &&
           resolved.joins == mJoins && resolved.requiredJoins == mRequiredJoins &&
           mContext.GetUserMessages().empty() &&
           !mContext.GetJoinCache()->GetJoinPath(resolved.subjects, resolved.favouredJoins,
                                                 resolved.requiredJoins, path);
}

AQE_I_QuerySubjectShortcutInfo& RequestBasis::GetShortcutInfo()
{
    if (!mShortcutsAreBuilt) {
        mShortcutInfo->Initialize(mNodes, mJoins, mRequiredJoins);
        mShortcutsAreBuilt = true;
    }
    return *mShortcutInfo;
}

} // namespace qe::tool
