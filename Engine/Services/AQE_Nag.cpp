#include "AQE_Nag.h"

#include "AQE_RequestContext.h"

void AQE_Nag::CreateMessage(AQE_RequestContext* context, QF_Message_V3::ESeverity severity,
                            QF_Message_V3::EType type, ORVMessage& message)
{
    if (context != nullptr)
        context->AddUserMessage({severity, type, message});
}
