#ifndef PLATFORM_AQE_I_AUTHENTICATION_H
#define PLATFORM_AQE_I_AUTHENTICATION_H

#include "I18NString.h"
#include "QEENGINE_EXPORT.h"

#include <vector>

/// Who makes a request.
class QEENGINE_EXPORT AQE_I_Authentication
{
public:
    virtual ~AQE_I_Authentication();

    /// Returns the names of the user classes that the user belongs to.
    [[nodiscard]] virtual std::vector<I18NString> GetUserClasses() const = 0;
};

/// Returns the user classes as one text, separated by message text 29; empty without a user (null).
[[nodiscard]] QEENGINE_EXPORT I18NString
AQE_GetUserClassesString(const AQE_I_Authentication* authentication);

#endif
