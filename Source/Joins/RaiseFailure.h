#ifndef SOURCE_JOINS_RAISEFAILURE_H
#define SOURCE_JOINS_RAISEFAILURE_H

#include "I18NString.h"

#include <cstdint>
#include <vector>

namespace qe {

/// A failure to report to the caller: how bad it is, the message that tells it, and the place in
/// the sources that raises it.
struct Failure
{
    int severity = 1;
    int code = 0;
    std::uint32_t messageNumber = 0;
    /// At most six.
    std::vector<I18NString> parameters;
    const char* sourcePath = "";
    int sourceLine = 0;
};

/// Logs the failure and raises it as an HBNException of the component "QE".
void RaiseFailure(const Failure& failure);

} // namespace qe

#endif
