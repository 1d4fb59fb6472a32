#ifndef PLATFORM_ORVMESSAGEPARM_H
#define PLATFORM_ORVMESSAGEPARM_H

#include "I18NString.h"

#include <utility>

/// One parameter of a message: the text that replaces a placeholder.
class ORVMessageParm
{
public:
    explicit ORVMessageParm(I18NString text) : mText(std::move(text)) {}

    [[nodiscard]] const I18NString& GetText() const noexcept { return mText; }

private:
    I18NString mText;
};

#endif
