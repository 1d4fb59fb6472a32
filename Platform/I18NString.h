#ifndef PLATFORM_I18NSTRING_H
#define PLATFORM_I18NSTRING_H

#include <compare>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

/// The engine's string: UTF-8 text, compared by code units.
class I18NString
{
public:
    I18NString() = default;

    /// Copies the zero-terminated `text`; null counts as empty.
    I18NString(const char* text) : mText(text == nullptr ? "" : text) {}
    I18NString(std::string text) noexcept : mText(std::move(text)) {}
    I18NString(std::string_view text) : mText(text) {}

    /// Returns the text with a terminating zero; good until the string changes.
    [[nodiscard]] const char* c_str() const noexcept { return mText.c_str(); }
    [[nodiscard]] std::string_view View() const noexcept { return mText; }
    [[nodiscard]] const std::string& ToStdString() const noexcept { return mText; }

    /// Counts code units (bytes), not characters.
    [[nodiscard]] std::size_t Length() const noexcept { return mText.size(); }
    [[nodiscard]] bool IsEmpty() const noexcept { return mText.empty(); }

    I18NString& operator+=(const I18NString& other)
    {
        mText += other.mText;
        return *this;
    }

    friend I18NString operator+(I18NString left, const I18NString& right)
    {
        left += right;
        return left;
    }

    friend bool operator==(const I18NString&, const I18NString&) = default;

    /// Compares code unit by code unit, as unsigned numbers.
    friend std::strong_ordering operator<=>(const I18NString& left,
                                            const I18NString& right) noexcept
    {
        return left.mText.compare(right.mText) <=> 0;
    }

    friend std::ostream& operator<<(std::ostream& out, const I18NString& text)
    {
        return out << text.mText;
    }

private:
    std::string mText;
};

#endif
