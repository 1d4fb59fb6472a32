#include "Engine/Services/MessageCatalogue.h"
#include "HBNMessage.h"
#include "ORVMessage.h"

#include <cstdio>
#include <string>

namespace {

std::string ListParameters(std::uint32_t number, const std::vector<ORVMessageParm>& parameters)
{
    char digits[16];
    std::snprintf(digits, sizeof digits, "0x%08X", static_cast<unsigned int>(number));
    std::string text = std::string("Message ") + digits;
    const char* separator = ": ";
    for (const ORVMessageParm& parameter : parameters) {
        text += separator + parameter.GetText().ToStdString();
        separator = ", ";
    }
    return text;
}

} // namespace

ORVMessage::ORVMessage(std::uint32_t number) : mNumber(number)
{}

ORVMessage::ORVMessage(const ORVMessage&) = default;
ORVMessage& ORVMessage::operator=(const ORVMessage&) = default;
ORVMessage::~ORVMessage() = default;

void ORVMessage::AddParameter(const ORVMessageParm& parameter)
{
    mParameters.push_back(parameter);
}

I18NString ORVMessage::GetText() const
{
    const std::string_view pattern = qe::FindMessageText(mNumber);
    if (pattern.empty())
        return ListParameters(mNumber, mParameters);
    return qe::FillPlaceholders(pattern, mParameters);
}

HBNMessage::HBNMessage(std::uint32_t number) : ORVMessage(number)
{}

HBNMessage::HBNMessage(const HBNMessage&) = default;
HBNMessage& HBNMessage::operator=(const HBNMessage&) = default;
HBNMessage::~HBNMessage() = default;
