#ifndef PLATFORM_ORVASSERTERROR_H
#define PLATFORM_ORVASSERTERROR_H

#include "ORVThrowable.h"

#include <string>

/// A programming error: something that must hold does not.
class QEENGINE_EXPORT ORVAssertError : public ORVThrowable
{
public:
    ORVAssertError(int errorCode, const char* assertedText);
    ORVAssertError(const ORVAssertError&);
    ORVAssertError& operator=(const ORVAssertError&);
    ~ORVAssertError() override;

    void hurl(const ORVFileLocation& location, const char* component,
              const char* macroName) override;

    [[nodiscard]] int GetErrorCode() const noexcept { return mErrorCode; }
    [[nodiscard]] const std::string& GetAssertedText() const noexcept { return mAssertedText; }

private:
    int mErrorCode;
    std::string mAssertedText;
};

/// Raises an assertion error with error code 0 and `assertedText` unless `condition` holds.
#define ORV_ASSERT(condition, assertedText, sourcePath, sourceLine)                                \
    do {                                                                                           \
        if (!(condition))                                                                          \
            ORV_THROW(ORVAssertError(0, (assertedText)), sourcePath, sourceLine, nullptr);         \
    } while (false)

#endif
