#include "AQE_LogFile.h"

#include "Engine/Services/LogDestination.h"

#include <utility>

AQE_LogFile::AQE_LogFile(const I18NString& name) : AQE_LogFile(name, 0, 0, 0, I18NString())
{}

AQE_LogFile::AQE_LogFile(const I18NString& name, int /*level*/, std::uint32_t component,
                         std::uint32_t message, const I18NString& title)
    : mComponent(component), mMessage(message)
{
    qe::LogRoute route = qe::LogDestination::Get().Open();
    mLevel = route.level;
    mTarget = std::move(route.target);
    if (mLevel == 0)
        return;
    mName = name;
    mTitle = title;
}

AQE_LogFile::~AQE_LogFile() = default;

void AQE_LogFile::Log(int level, const I18NString& text)
{
    if (level <= mLevel && mTarget != nullptr)
        mTarget->Write({mName, level, mTitle, mComponent, mMessage, text});
}
