#include "AUT_LogException.h"

#include "AQE_LogFile.h"
#include "HBNException.h"
#include "QERes.h"

#include <string>

namespace {

constexpr int exceptionLevel = 1;

} // namespace

void AUT_LogException(const HBNException& exception, const char* sourcePath, int sourceLine)
{
    const std::uint32_t message =
        exception.GetMessages().empty() ? 0 : exception.GetMessages().front().GetNumber();
    AQE_LogFile log(QERes::getString(340), exceptionLevel, 0, message, "Exception");
    if (log.GetLogLevel() < exceptionLevel)
        return;
    const std::string place = sourcePath == nullptr ? "?" : sourcePath;
    log.Log(exceptionLevel,
            place + ':' + std::to_string(sourceLine) + ": " + exception.what() + '\n');
}
