#ifndef TOOLKIT_ASK_REQUESTBASIS_H
#define TOOLKIT_ASK_REQUESTBASIS_H

#include "AQE_Governors.h"
#include "AQE_I_Authentication.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_RequestContext.h"
#include "Engine/Model/ModelGateway.h"
#include "amd_id.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace qe::tool {

struct Question;
struct ResolvedQuestion;
struct ToolModel;

/// What requests about one candidate graph can have in common: gateway, governors, context with a
/// join cache, and shortcut information. All that is kept here are facts of the model, but for the
/// paths that the join cache remembers, which keep a basis from being used again.
class RequestBasis
{
public:
    RequestBasis(const ToolModel& model, const Question& question,
                 const ResolvedQuestion& resolved);
    RequestBasis(const RequestBasis&) = delete;
    RequestBasis& operator=(const RequestBasis&) = delete;
    ~RequestBasis();

    /// Returns whether the question gets the answer from this basis that it would get from one of
    /// its own: candidate graph, governors and kind of request are the same, nothing was said to
    /// the user, and the cache remembers no path for these subjects and joins.
    [[nodiscard]] bool Fits(const ToolModel& model, const Question& question,
                            const ResolvedQuestion& resolved) const;

    [[nodiscard]] model::ModelGateway& GetGateway() { return mGateway; }
    [[nodiscard]] AQE_Governors& GetGovernors() { return mGovernors; }
    [[nodiscard]] AQE_RequestContext& GetContext() { return mContext; }
    /// Returns the shortcut information about the candidate graph, which is built on the first
    /// call.
    [[nodiscard]] AQE_I_QuerySubjectShortcutInfo& GetShortcutInfo();

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

    std::vector<amd_id> mNodes;
    std::vector<amd_id> mJoins;
    std::vector<amd_id> mRequiredJoins;
    UserClasses mUserClasses;
    model::ModelGateway mGateway;
    AQE_Governors mGovernors;
    AQE_RequestContext mContext;
    std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> mShortcutInfo;
    bool mShortcutsAreBuilt = false;
};

} // namespace qe::tool

#endif
