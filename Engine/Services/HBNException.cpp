#include "HBNException.h"

#include <algorithm>
#include <array>

namespace {

std::string DescribeException(int severity, int code, const std::vector<HBNMessage>& messages)
{
    std::string text = "Severity " + std::to_string(severity) + ", code " + std::to_string(code);
    const char* separator = ": ";
    for (const HBNMessage& message : messages) {
        text += separator + message.GetText().ToStdString();
        separator = " ";
    }
    return text;
}

} // namespace

HBNException::HBNException(int severity, int code) : mSeverity(severity), mCode(code)
{
    Describe(DescribeException(mSeverity, mCode, mMessages));
}

HBNException::HBNException(const HBNException&) = default;
HBNException& HBNException::operator=(const HBNException&) = default;
HBNException::~HBNException() = default;

void HBNException::hurl(const ORVFileLocation& location, const char* component,
                        const char* macroName)
{
    NoteOrigin(location, component, macroName);
    throw *this;
}

void HBNException::AddMessage(const HBNMessage& message)
{
    mMessages.push_back(message);
    Describe(DescribeException(mSeverity, mCode, mMessages));
}

void HBNAddMessages(HBNException& exception, std::uint32_t messageNumber, int parameterCount,
                    const I18NString& parameter1, const I18NString& parameter2,
                    const I18NString& parameter3, const I18NString& parameter4,
                    const I18NString& parameter5, const I18NString& parameter6)
{
    const std::array parameters{&parameter1, &parameter2, &parameter3,
                                &parameter4, &parameter5, &parameter6};
    const int count = std::clamp(parameterCount, 0, static_cast<int>(parameters.size()));
    HBNMessage message(messageNumber);
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        message.AddParameter(ORVMessageParm(*parameters[i]));
    exception.AddMessage(message);
}
