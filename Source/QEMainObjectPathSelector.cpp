#include "MainObjectPathSelector.h"

#include "AQE_I_JoinPathDescriptor.h"
#include "MainObject/MainObject.h"
#include "MainObject/PathJoins.h"

#include <algorithm>
#include <utility>

MainObjectPathSelector::MainObjectPathSelector(amdi_gateway* gateway,
                                               AQE_RequestContext* requestContext,
                                               std::vector<amd_id> subjects, const Options& options)
    : mGateway(gateway),
      mOptions(options),
      mSubjects(std::move(subjects)),
      mRequestContext(requestContext)
{}

MainObjectPathSelector::~MainObjectPathSelector() = default;

std::uint32_t MainObjectPathSelector::SelectPath(
    const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors)
{
    std::vector<amd_id> path;
    for (std::uint32_t index = 0; index < descriptors.size(); ++index) {
        descriptors[index]->GetJoinPath(path);
        if (IsMainObjectPath(path))
            return index;
    }
    return 0;
}

std::uint32_t
MainObjectPathSelector::SelectAlternative(const std::vector<std::vector<amd_id>>& paths)
{
    const auto found =
        std::find_if(paths.begin(), paths.end(),
                     [this](const std::vector<amd_id>& path) { return IsMainObjectPath(path); });
    return found == paths.end() ? 0 : static_cast<std::uint32_t>(found - paths.begin());
}

void MainObjectPathSelector::AddTriple(const amd_id& a, const amd_id& b, const amd_id& c,
                                       bool clearFirst)
{
    const Triple triple{c, b, a};
    if (clearFirst)
        mTriples.clear();
    mTriples.push_back(triple);
}

bool MainObjectPathSelector::IsMainObjectPath(const std::vector<amd_id>& path)
{
    if (mSubjects.empty())
        return false;
    if (mSubjects.size() == 1) {
        mOneToOneObjects.push_back(mSubjects.front());
        mMainObject = mSubjects.front();
        mFound = true;
        return true;
    }
    const qe::PathJoins joins(mGateway, mRequestContext, path);
    const auto found = qe::FindMainObject(joins, path, mSubjects, mOptions);
    if (!found)
        return false;
    mOneToOneObjects.reserve(mOneToOneObjects.size() + found->oneToOneObjects.size());
    mPathObjects.reserve(mPathObjects.size() + found->pathObjects.size());
    mMainObject = found->id;
    mFound = true;
    for (const amd_id& object : found->oneToOneObjects) {
        if (std::find(mOneToOneObjects.begin(), mOneToOneObjects.end(), object) ==
            mOneToOneObjects.end())
            mOneToOneObjects.push_back(object);
    }
    mPathObjects.insert(mPathObjects.end(), found->pathObjects.begin(), found->pathObjects.end());
    return true;
}
