#include "AQE_LogFile.h"

#include "AUT_LogException.h"
#include "Engine/Services/LogDestination.h"
#include "Engine/Services/MessageCatalogue.h"
#include "HBNException.h"
#include "QERes.h"

#include <string>
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

void AUT_LogException(const HBNException& exception, const char* sourcePath, int sourceLine)
{
    constexpr int kLevel = 1;
    const std::uint32_t message =
        exception.GetMessages().empty() ? 0 : exception.GetMessages().front().GetNumber();
    AQE_LogFile log(QERes::getString(qe::kLogNameText), kLevel, 0, message, "Exception");
    if (log.GetLogLevel() < kLevel)
        return;
    const std::string place = sourcePath == nullptr ? "?" : sourcePath;
    log.Log(kLevel, place + ':' + std::to_string(sourceLine) + ": " + exception.what() + '\n');
}
