#include "ORVAssertError.h"

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
    NoteOrigin(location, component, macroName);
    throw *this;
}
