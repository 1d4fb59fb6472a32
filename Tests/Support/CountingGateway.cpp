#include "Tests/Support/CountingGateway.h"

#include "Engine/Model/MetadataObject.h"

namespace qe::test {

amdi_object* CountingGateway::GetObject(const amd_id& id)
{
    calls.Count();
    if (calls.GetCallCount() > mCallsWithObjects)
        return nullptr;
    const auto replacement = mReplacements.find(id);
    return replacement != mReplacements.end() ? replacement->second.get() : mNext.GetObject(id);
}

I18NLocale CountingGateway::GetLocale(const amd_id& id)
{
    calls.Count();
    return mNext.GetLocale(id);
}

amd_id CountingGateway::GetQualifierId(amd_id id)
{
    calls.Count();
    return mNext.GetQualifierId(id);
}

std::optional<qe::expression::ResolvedReference>
CountingGateway::ResolveReference(const std::vector<I18NString>& names)
{
    return mNext.ResolveReference(names);
}

void CountingGateway::Replace(const amd_id& id, const qe::model::ObjectRecord& record)
{
    mRecords.push_back(record);
    mReplacements[id] = qe::model::MakeMetadataObject(mRecords.back());
}

void CountingGateway::Hide(const amd_id& id)
{
    mReplacements[id] = nullptr;
}

} // namespace qe::test
