#include "QERes.h"

const I18NString& QERes::getString(long number)
{
    static const I18NString noText;
    static const I18NString separator(", ");
    static const I18NString logName("QueryEngine");
    switch (number) {
    case 29:
        return separator;
    case 340:
        return logName;
    default:
        return noText;
    }
}
