#ifndef PLATFORM_HBNMESSAGE_H
#define PLATFORM_HBNMESSAGE_H

#include "ORVMessage.h"

/// A message of the query engine's own catalogue.
class QEENGINE_EXPORT HBNMessage : public ORVMessage
{
public:
    explicit HBNMessage(std::uint32_t number);
    HBNMessage(const HBNMessage&);
    HBNMessage& operator=(const HBNMessage&);
    ~HBNMessage() override;
};

#endif
