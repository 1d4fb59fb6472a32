#ifndef PLATFORM_AQE_LOGFILE_H
#define PLATFORM_AQE_LOGFILE_H

#include "I18NString.h"
#include "QEENGINE_EXPORT.h"

#include <cstdint>
#include <memory>

namespace qe {
class LogTarget;
} // namespace qe

/// Writes to the diagnostic log. Opening one costs little: where entries go, and from
/// which level on they are wanted, is looked up once.
class QEENGINE_EXPORT AQE_LogFile
{
public:
    explicit AQE_LogFile(const I18NString& name);

    /// Opens the log for entries of one level under a title, with the two numbers of the
    /// component and the message that introduce them.
    AQE_LogFile(const I18NString& name, int level, std::uint32_t component, std::uint32_t message,
                const I18NString& title);

    AQE_LogFile(const AQE_LogFile&) = delete;
    AQE_LogFile& operator=(const AQE_LogFile&) = delete;
    ~AQE_LogFile();

    /// Returns the highest level that is written; 0 when logging is off. Writers ask this before
    /// they compose an entry.
    [[nodiscard]] int GetLogLevel() const noexcept { return mLevel; }

    /// Writes one entry as it stands when `level` is wanted.
    void Log(int level, const I18NString& text);

private:
    I18NString mName;
    I18NString mTitle;
    std::uint32_t mComponent;
    std::uint32_t mMessage;
    int mLevel = 0;
    std::shared_ptr<qe::LogTarget> mTarget;
};

#endif
