#include "ORVThrowable.h"

#include <utility>

ORVThrowable::ORVThrowable() = default;
ORVThrowable::ORVThrowable(const ORVThrowable&) = default;
ORVThrowable& ORVThrowable::operator=(const ORVThrowable&) = default;
ORVThrowable::~ORVThrowable() = default;

void ORVThrowable::NoteOrigin(const ORVFileLocation& location, const char* component,
                              const char* macroName)
{
    mLocation = location;
    mComponent = component == nullptr ? "" : component;
    mMacroName = macroName == nullptr ? "" : macroName;
    mWhat = mDescription + GetOriginText();
}

void ORVThrowable::Describe(std::string text)
{
    mDescription = std::move(text);
    mWhat = mDescription + GetOriginText();
}

std::string ORVThrowable::GetOriginText() const
{
    std::string text;
    const auto append = [&text](const std::string& piece) {
        if (!piece.empty())
            text += (text.empty() ? "" : ", ") + piece;
    };
    if (!mLocation.file.empty())
        append(mLocation.file + ':' + std::to_string(mLocation.line));
    append(mComponent);
    append(mMacroName);
    return text.empty() ? text : " (" + text + ')';
}
