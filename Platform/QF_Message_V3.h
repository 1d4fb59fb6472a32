#ifndef PLATFORM_QF_MESSAGE_V3_H
#define PLATFORM_QF_MESSAGE_V3_H

/// The vocabulary of messages that a request carries back to its user.
class QF_Message_V3
{
public:
    enum ESeverity
    {
        SeverityError = -3,
        SeverityWarning = -2,
        SeverityInformation = -1,
    };

    enum EType
    {
        TypeGeneral = 0,
        TypeGovernor = 4,
    };
};

#endif
