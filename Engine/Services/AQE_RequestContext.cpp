#include "AQE_RequestContext.h"

#include <utility>

AQE_RequestContext::AQE_RequestContext(ECommandType commandType) : mCommandType(commandType)
{}

AQE_RequestContext::~AQE_RequestContext() = default;

void AQE_RequestContext::SetJoinCache(std::shared_ptr<AQE_JoinCache> cache)
{
    mJoinCache = std::move(cache);
}

void AQE_RequestContext::SetAuthentication(AQE_I_Authentication* authentication)
{
    mAuthentication = authentication;
}

void AQE_RequestContext::AddUserMessage(UserMessage message)
{
    mUserMessages.push_back(std::move(message));
}
