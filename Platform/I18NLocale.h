#ifndef PLATFORM_I18NLOCALE_H
#define PLATFORM_I18NLOCALE_H

#include "I18NString.h"

#include <utility>

/// A locale, named by its language tag ("en", "de-CH"). The empty tag is the neutral locale.
class I18NLocale
{
public:
    I18NLocale() = default;
    explicit I18NLocale(I18NString tag) : mTag(std::move(tag)) {}

    [[nodiscard]] const I18NString& GetTag() const noexcept { return mTag; }
    friend bool operator==(const I18NLocale&, const I18NLocale&) = default;

private:
    I18NString mTag;
};

#endif
