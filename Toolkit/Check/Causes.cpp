#include "Toolkit/Check/Causes.h"

#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Check/Rules.h"

#include <algorithm>
#include <utility>

namespace qe::tool {

namespace {

/// The findings that have no cause yet, by the subjects that they pass.
class OpenFindings
{
public:
    OpenFindings(std::size_t subjects, const std::vector<Finding>& findings)
        : mFindings(findings),
          mIsOpen(findings.size(), false),
          mBySubject(subjects),
          mCounts(subjects)
    {
        for (std::size_t i = 0; i < findings.size(); ++i) {
            if (findings[i].accepted)
                continue;
            mIsOpen[i] = true;
            for (const std::size_t subject : findings[i].passed) {
                mBySubject[subject].push_back(i);
                ++mCounts[subject];
            }
        }
    }

    /// Returns the subject that most pass, the first of several.
    [[nodiscard]] std::size_t FindCommonest() const
    {
        return static_cast<std::size_t>(std::max_element(mCounts.begin(), mCounts.end()) -
                                        mCounts.begin());
    }

    /// Returns the findings that pass the subject. They are open no longer.
    std::vector<std::size_t> Take(std::size_t subject)
    {
        std::vector<std::size_t> taken;
        for (const std::size_t finding : mBySubject[subject]) {
            if (!mIsOpen[finding])
                continue;
            mIsOpen[finding] = false;
            taken.push_back(finding);
            for (const std::size_t passed : mFindings[finding].passed)
                --mCounts[passed];
        }
        return taken;
    }

    /// Returns those that are left.
    std::vector<std::size_t> TakeRest() const
    {
        std::vector<std::size_t> rest;
        for (std::size_t i = 0; i < mIsOpen.size(); ++i) {
            if (mIsOpen[i])
                rest.push_back(i);
        }
        return rest;
    }

private:
    const std::vector<Finding>& mFindings;
    std::vector<bool> mIsOpen;
    std::vector<std::vector<std::size_t>> mBySubject;
    std::vector<std::size_t> mCounts;
};

} // namespace

std::vector<Cause> FindCauses(const ModelGraph& model, const RuleFindings& found)
{
    std::vector<Cause> causes;
    OpenFindings open(model.GetSubjects().size(), found.findings);
    while (!model.GetSubjects().empty()) {
        const std::size_t subject = open.FindCommonest();
        Cause cause{.name = model.NameOf(subject), .findings = open.Take(subject)};
        if (cause.findings.empty())
            break;
        causes.push_back(std::move(cause));
    }
    if (std::vector<std::size_t> rest = open.TakeRest(); !rest.empty())
        causes.push_back({.name = {}, .findings = std::move(rest)});
    return causes;
}

} // namespace qe::tool
