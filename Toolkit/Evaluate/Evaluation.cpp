#include "Toolkit/Evaluate/Evaluation.h"

#include <numeric>

namespace qe::tool {

std::string_view ToText(EComparison comparison)
{
    switch (comparison) {
    case EComparison::Same:
        return "same";
    case EComparison::OtherOfEquallyGood:
        return "other of equally good";
    case EComparison::LongerThanNeeded:
        return "longer than needed";
    case EComparison::OutsideModel:
        return "outside the model";
    case EComparison::NotConnected:
        return "not connected";
    case EComparison::Refused:
        return "refused";
    }
    return "";
}

std::size_t Tally::CountRequests() const
{
    return std::accumulate(counts.begin(), counts.end(), std::size_t{0});
}

std::size_t Tally::CountEquallyGood() const
{
    return Get(EComparison::Same) + Get(EComparison::OtherOfEquallyGood);
}

} // namespace qe::tool
