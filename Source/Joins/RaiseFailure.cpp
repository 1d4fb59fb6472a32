#include "Joins/RaiseFailure.h"

#include "AUT_LogException.h"
#include "HBNException.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace qe {

void RaiseFailure(const Failure& failure)
{
    std::array<I18NString, 6> parameters;
    const std::size_t count = std::min(failure.parameters.size(), parameters.size());
    std::copy_n(failure.parameters.begin(), count, parameters.begin());

    HBNException exception(failure.severity, failure.code);
    HBNAddMessages(exception, failure.messageNumber, static_cast<int>(count), parameters[0],
                   parameters[1], parameters[2], parameters[3], parameters[4], parameters[5]);
    AUT_LogException(exception, failure.sourcePath, failure.sourceLine);
    ORV_THROW(exception, failure.sourcePath, failure.sourceLine, "QE");
}

} // namespace qe
