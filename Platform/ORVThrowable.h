#ifndef PLATFORM_ORVTHROWABLE_H
#define PLATFORM_ORVTHROWABLE_H

#include "ORVFileLocation.h"
#include "QEENGINE_EXPORT.h"

#include <exception>
#include <string>

/// The root of the engine's exceptions. What is caught knows where it was raised, by which
/// component and through which macro.
class QEENGINE_EXPORT ORVThrowable : public std::exception
{
public:
    ORVThrowable();
    ORVThrowable(const ORVThrowable&);
    ORVThrowable& operator=(const ORVThrowable&);
    ~ORVThrowable() override;

    /// Records the place, the component (null: none) and the macro's name, then throws a copy of
    /// the object with its most derived type.
    virtual void hurl(const ORVFileLocation& location, const char* component,
                      const char* macroName) = 0;

    [[nodiscard]] const ORVFileLocation& GetLocation() const noexcept { return mLocation; }
    /// Returns the component that raised the exception; empty when none was named.
    [[nodiscard]] const std::string& GetComponent() const noexcept { return mComponent; }
    [[nodiscard]] const std::string& GetMacroName() const noexcept { return mMacroName; }

    /// Returns one readable line: what went wrong, and where. Good until the object changes.
    [[nodiscard]] const char* what() const noexcept override { return mWhat.c_str(); }

protected:
    void RecordOrigin(const ORVFileLocation& location, const char* component,
                      const char* macroName);
    void Describe(std::string text);

private:
    std::string GetOriginText() const;

    ORVFileLocation mLocation;
    std::string mComponent;
    std::string mMacroName;
    std::string mDescription;
    std::string mWhat;
};

/// Raises `exception` with the place (source path and line) and the component that raises it.
#define ORV_THROW(exception, sourcePath, sourceLine, component)                                    \
    (exception).hurl(ORVFileLocation{(sourcePath), (sourceLine)}, (component), "ORV_THROW")

#endif
