#ifndef TOOLKIT_ASK_REQUEST_H
#define TOOLKIT_ASK_REQUEST_H

#include "AQE_Governors.h"
#include "AQE_I_Authentication.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "AQE_RequestContext.h"
#include "Engine/Model/ModelGateway.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Ask/ResolvedQuestion.h"
#include "amd_id.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace qe::tool {

struct ToolModel;

/// Everything that one request to the refiner lives on: gateway, governors, context with an empty
/// join cache, and shortcut information about the candidate graph.
class Request
{
public:
    /// Refers to the resolved question.
    Request(const ToolModel& model, const Question& question, const ResolvedQuestion& resolved);
    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;
    ~Request();

    [[nodiscard]] model::ModelGateway& GetGateway() { return mGateway; }
    [[nodiscard]] AQE_Governors& GetGovernors() { return mGovernors; }
    [[nodiscard]] AQE_RequestContext& GetContext() { return mContext; }
    /// Returns the shortcut information, which is built on the first call.
    [[nodiscard]] AQE_I_QuerySubjectShortcutInfo& GetShortcutInfo();

    /// Makes a refiner that knows the shortcut information. `selector` is borrowed.
    [[nodiscard]] AUT_RefPtr<AQE_I_Refiner> MakeRefiner(AQE_I_PathSelector* selector,
                                                        const RankingSwitches& ranking);

    /// Reads a join of the model or one to what a shortcut stands for, with the weight that it has
    /// in the graph of this question. Nothing when it cannot be read.
    [[nodiscard]] std::optional<AQE_I_Refiner::QEjoinInfo> ReadJoin(const amd_id& join);

private:
    class UserClasses : public AQE_I_Authentication
    {
    public:
        explicit UserClasses(const std::vector<std::string>& names)
            : mNames(names.begin(), names.end())
        {}
        [[nodiscard]] std::vector<I18NString> GetUserClasses() const override { return mNames; }

    private:
        std::vector<I18NString> mNames;
    };

    [[nodiscard]] int GetWeight(const AQE_I_Refiner::QEjoinInfo& info);

    const ResolvedQuestion& mResolved;
    UserClasses mUserClasses;
    model::ModelGateway mGateway;
    AQE_Governors mGovernors;
    AQE_RequestContext mContext;
    std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> mShortcutInfo;
    bool mShortcutsAreBuilt = false;
    std::set<amd_id> mCheapJoins;
    std::set<amd_id> mAvoidedJoins;
    std::set<amd_id> mFavouredSubjects;
};

} // namespace qe::tool

#endif
