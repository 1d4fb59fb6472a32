#include "Tests/Support/CountingGateway.h"

#include "Engine/Model/MetadataObject.h"

namespace qe::test {

void CountingGateway::CountCall()
{
    ++mCalls;
    if (mCalls == mFailAt)
        throw GatewayFailure();
}

amdi_object* CountingGateway::GetObject(const amd_id& id)
{
    ++mCounts[id];
    CountCall();
    const auto replacement = mReplacements.find(id);
    return replacement != mReplacements.end() ? replacement->second.get() : mNext.GetObject(id);
}

I18NLocale CountingGateway::GetLocale(const amd_id& id)
{
    CountCall();
    return mNext.GetLocale(id);
}

amd_id CountingGateway::GetQualifierId(amd_id id)
{
    CountCall();
    return mNext.GetQualifierId(id);
}

std::optional<qe::expression::ResolvedReference>
CountingGateway::ResolveReference(const std::vector<I18NString>& names)
{
    auto* const resolver = dynamic_cast<qe::expression::ReferenceResolver*>(&mNext);
    return resolver == nullptr ? std::nullopt : resolver->ResolveReference(names);
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

std::size_t CountingGateway::CountOf(const amd_id& id) const
{
    const auto count = mCounts.find(id);
    return count == mCounts.end() ? 0 : count->second;
}

void CountingGateway::ResetCounts()
{
    mFailAt = mFailAt > mCalls ? mFailAt - mCalls : 0;
    mCounts.clear();
    mCalls = 0;
}

} // namespace qe::test
