#include "AQE_I_Authentication.h"
#include "QERes.h"

I18NString AQE_GetUserClassesString(const AQE_I_Authentication* authentication)
{
    I18NString text;
    if (authentication == nullptr)
        return text;
    bool first = true;
    for (const I18NString& userClass : authentication->GetUserClasses()) {
        if (!first)
            text += QERes::getString(29);
        text += userClass;
        first = false;
    }
    return text;
}
