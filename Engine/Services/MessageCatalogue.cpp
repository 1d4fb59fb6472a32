#include "Engine/Services/MessageCatalogue.h"

#include "HBNMessage.h"
#include "ORVMessage.h"
#include "QERes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <string>

namespace qe {
namespace {

struct CatalogueEntry
{
    std::uint32_t number;
    std::string_view text;
};

constexpr std::array<CatalogueEntry, 10> kCatalogue{{
    {0xA9E09D1F, "The one-to-many joins of the query form a cycle, so that facts and dimensions "
                 "cannot be told apart."},
    {0xA9E12896, "A many-to-many join cannot tell facts from dimensions."},
    {0xA9E143D7, "Query subject shortcuts"},
    {0xA9E29A41, "The query subjects are not all joined, so the query contains a cross product. "
                 "User classes: {1}"},
    {kSyntaxErrorMessage,
     "The expression has a syntax error at {1}: expected {2}, found {3}. It was read "
     "for: {4}"},
    {0xA9E60195, "Joins between shortcuts and the query subjects they stand for"},
    {0xA9E9BA5B, "The cardinality at the right end of a join is neither one nor many."},
    {0xA9EBF43B, "The cardinality at the left end of a join is neither one nor many."},
    {0xA9EC593C, "The path selector chose none of the join paths that it was given."},
    {0xA9EE8A4D, "The query subjects {1} cannot be joined, and cross products are not allowed. "
                 "User classes: {2}"},
}};

constexpr bool IsSorted()
{
    for (std::size_t i = 1; i < kCatalogue.size(); ++i) {
        if (kCatalogue[i - 1].number >= kCatalogue[i].number)
            return false;
    }
    return true;
}
static_assert(IsSorted(), "FindMessageText searches the catalogue by halving");

} // namespace

std::string_view FindMessageText(std::uint32_t number) noexcept
{
    const auto* const found = std::lower_bound(
        kCatalogue.begin(), kCatalogue.end(), number,
        [](const CatalogueEntry& entry, std::uint32_t wanted) { return entry.number < wanted; });
    if (found == kCatalogue.end() || found->number != number)
        return {};
    return found->text;
}

std::string FillPlaceholders(std::string_view pattern,
                             const std::vector<ORVMessageParm>& parameters)
{
    std::string text;
    std::size_t position = 0;
    while (position < pattern.size()) {
        if (pattern[position] == '{' && position + 2 < pattern.size() &&
            pattern[position + 2] == '}' && pattern[position + 1] >= '1' &&
            pattern[position + 1] <= '9') {
            const auto index = static_cast<std::size_t>(pattern[position + 1] - '1');
            if (index < parameters.size()) {
                text += parameters[index].GetText().View();
                position += 3;
                continue;
            }
        }
        text += pattern[position++];
    }
    return text;
}

} // namespace qe

const I18NString& QERes::getString(long number)
{
    static const I18NString noText;
    static const I18NString separator(", ");
    static const I18NString logName("QueryEngine");
    switch (number) {
    case qe::kListSeparatorText:
        return separator;
    case qe::kLogNameText:
        return logName;
    default:
        return noText;
    }
}

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
