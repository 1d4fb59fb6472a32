#ifndef TOOLKIT_ASK_REQUEST_H
#define TOOLKIT_ASK_REQUEST_H

#include "AQE_Governors.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "AQE_RequestContext.h"
#include "Engine/Model/ModelGateway.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Ask/RequestBasis.h"
#include "Toolkit/Ask/ResolvedQuestion.h"
#include "amd_id.h"

#include <optional>
#include <set>

namespace qe::tool {

/// One request to the refiner, on what it may share with others.
class Request
{
public:
    /// Refers to the basis.
    Request(RequestBasis& basis, const ResolvedQuestion& resolved);

    [[nodiscard]] model::ModelGateway& GetGateway() { return mBasis.GetGateway(); }
    [[nodiscard]] AQE_Governors& GetGovernors() { return mBasis.GetGovernors(); }
    [[nodiscard]] AQE_RequestContext& GetContext() { return mBasis.GetContext(); }
    [[nodiscard]] AQE_I_QuerySubjectShortcutInfo& GetShortcutInfo()
    {
        return mBasis.GetShortcutInfo();
    }

    /// Makes a refiner that knows the shortcut information. `selector` is borrowed.
    [[nodiscard]] AUT_RefPtr<AQE_I_Refiner> MakeRefiner(AQE_I_PathSelector* selector,
                                                        const RankingSwitches& ranking);

    /// Reads a join of the model or one to what a shortcut stands for, with the weight that it has
    /// in the graph of this question. Nothing when it cannot be read.
    [[nodiscard]] std::optional<AQE_I_Refiner::QEjoinInfo> ReadJoin(const amd_id& join);

private:
    [[nodiscard]] int GetWeight(const AQE_I_Refiner::QEjoinInfo& info);

    RequestBasis& mBasis;
    std::set<amd_id> mCheapJoins;
    std::set<amd_id> mAvoidedJoins;
    std::set<amd_id> mFavouredSubjects;
};

} // namespace qe::tool

#endif
