#include "HBNException.h"
#include "ORVAssertError.h"
#include "ORVThrowable.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

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

ORVThrowable::ORVThrowable() = default;
ORVThrowable::ORVThrowable(const ORVThrowable&) = default;
ORVThrowable& ORVThrowable::operator=(const ORVThrowable&) = default;
ORVThrowable::~ORVThrowable() = default;

void ORVThrowable::RecordOrigin(const ORVFileLocation& location, const char* component,
                                const char* macroName)
{
    mLocation = location;
    mComponent = component == nullptr ? "" : component;
    mMacroName = macroName == nullptr ? "" : macroName;
    mWhat = mDescription + GetOriginText();
}

void ORVThrowable::Describe(std::string text)
{
    mDescription = std::move(text);
    mWhat = mDescription + GetOriginText();
}

std::string ORVThrowable::GetOriginText() const
{
    std::string text;
    const auto append = [&text](const std::string& piece) {
        if (!piece.empty())
            text += (text.empty() ? "" : ", ") + piece;
    };
    if (!mLocation.file.empty())
        append(mLocation.file + ':' + std::to_string(mLocation.line));
    append(mComponent);
    append(mMacroName);
    return text.empty() ? text : " (" + text + ')';
}

ORVAssertError::ORVAssertError(int errorCode, const char* assertedText)
    : mErrorCode(errorCode), mAssertedText(assertedText == nullptr ? "" : assertedText)
{
    Describe("Assertion failed, error code " + std::to_string(mErrorCode) + ": " + mAssertedText);
}

ORVAssertError::ORVAssertError(const ORVAssertError&) = default;
ORVAssertError& ORVAssertError::operator=(const ORVAssertError&) = default;
ORVAssertError::~ORVAssertError() = default;

void ORVAssertError::hurl(const ORVFileLocation& location, const char* component,
                          const char* macroName)
{
    RecordOrigin(location, component, macroName);
    throw *this;
}

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
    RecordOrigin(location, component, macroName);
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
