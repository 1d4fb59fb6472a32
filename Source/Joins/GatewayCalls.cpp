#include "Joins/GatewayCalls.h"

#include "AUT_LogException.h"
#include "HBNException.h"
#include "ORVAssertError.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace qe {

void RaiseFailure(const host::Failure& failure, const std::vector<I18NString>& parameters)
{
    std::array<I18NString, 6> texts;
    const std::size_t count = std::min(parameters.size(), texts.size());
    std::copy_n(parameters.begin(), count, texts.begin());

    HBNException exception(failure.severity, failure.code);
    HBNAddMessages(exception, failure.messageNumber, static_cast<int>(count), texts[0], texts[1],
                   texts[2], texts[3], texts[4], texts[5]);
    AUT_LogException(exception, failure.place.source, failure.place.line);
    ORV_THROW(exception, failure.place.source, failure.place.line, "QE");
}

void RaiseUnlessAdded(EFactJoin result)
{
    switch (result) {
    case EFactJoin::Added:
        return;
    case EFactJoin::LeftUnusable:
        return RaiseFailure(host::kLeftUnusable);
    case EFactJoin::RightUnusableBesideOne:
        return RaiseFailure(host::kRightUnusableBesideOne);
    case EFactJoin::RightUnusableBesideMany:
        return RaiseFailure(host::kRightUnusableBesideMany);
    case EFactJoin::ManyToMany:
        return RaiseFailure(host::kManyToManyJoin);
    case EFactJoin::Cyclic:
        return RaiseFailure(host::kCyclicFacts);
    }
}

void RaiseBrokenInvariant(const host::BrokenInvariant& invariant)
{
    ORV_ASSERT(false, invariant.text, invariant.place.source, invariant.place.line);
}

} // namespace qe
