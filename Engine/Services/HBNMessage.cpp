#include "HBNMessage.h"

HBNMessage::HBNMessage(std::uint32_t number) : ORVMessage(number)
{}

HBNMessage::HBNMessage(const HBNMessage&) = default;
HBNMessage& HBNMessage::operator=(const HBNMessage&) = default;
HBNMessage::~HBNMessage() = default;
