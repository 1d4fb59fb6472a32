#ifndef TOOLKIT_ASK_LOGNOTICES_H
#define TOOLKIT_ASK_LOGNOTICES_H

#include <string>
#include <vector>

namespace qe::tool {

/// Gathers what the library logs for its users on this thread, such as that a list was cut, from
/// its making to its end. Failures, which reach the caller anyway, are left out.
///
/// The log belongs to the process: objects on several threads share one capture of it. It is
/// written where the user wants it all the same.
class LogNotices
{
public:
    LogNotices();
    LogNotices(const LogNotices&) = delete;
    LogNotices& operator=(const LogNotices&) = delete;
    ~LogNotices();

    /// Returns what was gathered so far, each text once, in the order of writing.
    [[nodiscard]] std::vector<std::string> Get() const;

private:
    std::vector<std::string> mTexts;
};

} // namespace qe::tool

#endif
