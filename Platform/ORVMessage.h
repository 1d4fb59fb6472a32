#ifndef PLATFORM_ORVMESSAGE_H
#define PLATFORM_ORVMESSAGE_H

#include "I18NString.h"
#include "ORVMessageParm.h"
#include "QEENGINE_EXPORT.h"

#include <cstdint>
#include <vector>

/// A numbered message with its parameters. The text comes from the message catalogue.
class QEENGINE_EXPORT ORVMessage
{
public:
    explicit ORVMessage(std::uint32_t number);
    ORVMessage(const ORVMessage&);
    ORVMessage& operator=(const ORVMessage&);
    virtual ~ORVMessage();

    void AddParameter(const ORVMessageParm& parameter);

    [[nodiscard]] std::uint32_t GetNumber() const noexcept { return mNumber; }
    [[nodiscard]] const std::vector<ORVMessageParm>& GetParameters() const noexcept
    {
        return mParameters;
    }

    /// Returns the catalogue's text with the parameters filled in. A number without text yields a
    /// text that names the number and the parameters.
    [[nodiscard]] I18NString GetText() const;

private:
    std::uint32_t mNumber;
    std::vector<ORVMessageParm> mParameters;
};

#endif
