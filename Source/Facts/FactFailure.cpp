#include "Facts/FactFailure.h"

#include "Joins/RaiseFailure.h"

namespace qe {

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

} // namespace qe
