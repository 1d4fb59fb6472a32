#ifndef PLATFORM_HBNEXCEPTION_H
#define PLATFORM_HBNEXCEPTION_H

#include "HBNMessage.h"
#include "ORVThrowable.h"

#include <cstdint>
#include <vector>

/// A failure that the query engine reports to its user, with its messages.
class QEENGINE_EXPORT HBNException : public ORVThrowable
{
public:
    HBNException(int severity, int code);
    HBNException(const HBNException&);
    HBNException& operator=(const HBNException&);
    ~HBNException() override;

    void hurl(const ORVFileLocation& location, const char* component,
              const char* macroName) override;

    void AddMessage(const HBNMessage& message);

    [[nodiscard]] int GetSeverity() const noexcept { return mSeverity; }
    [[nodiscard]] int GetCode() const noexcept { return mCode; }
    /// Returns the messages in the order in which they were added.
    [[nodiscard]] const std::vector<HBNMessage>& GetMessages() const noexcept { return mMessages; }

private:
    int mSeverity;
    int mCode;
    std::vector<HBNMessage> mMessages;
};

/// Adds a message with the first `parameterCount` of the six parameters to `exception`.
QEENGINE_EXPORT void HBNAddMessages(HBNException& exception, std::uint32_t messageNumber,
                                    int parameterCount, const I18NString& parameter1,
                                    const I18NString& parameter2, const I18NString& parameter3,
                                    const I18NString& parameter4, const I18NString& parameter5,
                                    const I18NString& parameter6);

#endif
