#ifndef PLATFORM_AQE_NAG_H
#define PLATFORM_AQE_NAG_H

#include "QEENGINE_EXPORT.h"
#include "QF_Message_V3.h"

class AQE_RequestContext;
class ORVMessage;

/// Attaches messages for its user to a request, which goes on.
class QEENGINE_EXPORT AQE_Nag
{
public:
    /// Attaches a copy of `message` to the request. Nothing happens without a request (null).
    static void CreateMessage(AQE_RequestContext* context, QF_Message_V3::ESeverity severity,
                              QF_Message_V3::EType type, ORVMessage& message);
};

#endif
