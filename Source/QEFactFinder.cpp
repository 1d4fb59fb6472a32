#include "QEFactFinder.h"

#include "Facts/FactFailure.h"
#include "Facts/FactQueries.h"

#include <ostream>

template class AUT_RefPtr<AQE_I_FactFinder>;

AQE_I_FactFinder::~AQE_I_FactFinder() = default;

AUT_RefPtr<AQE_I_FactFinder> AQE_I_FactFinder::Create()
{
    return AUT_RefPtr<AQE_I_FactFinder>(new AQE_FactFinder);
}

AQE_FactFinder::AQE_FactFinder() = default;

AQE_FactFinder::~AQE_FactFinder() = default;

void AQE_FactFinder::AddJoin(amd_id /*joinId*/, amd_id left, int leftMax, amd_id right,
                             int rightMax)
{
    qe::RaiseUnlessAdded(mGraph.AddJoin({.subject = left, .maximum = leftMax},
                                        {.subject = right, .maximum = rightMax}));
}

void AQE_FactFinder::GetDimensions(amd_id id, std::vector<amd_id>* dimensions, bool recursive)
{
    if (dimensions != nullptr)
        qe::AppendDimensions(mGraph, id, recursive ? qe::EDimensions::All : qe::EDimensions::Own,
                             *dimensions);
}

void AQE_FactFinder::GetFacts(std::vector<amd_id>& facts)
{
    qe::AppendFacts(mGraph, facts);
}

void AQE_FactFinder::GetSharedDimensions(std::vector<amd_id>& dimensions)
{
    qe::AppendSharedDimensions(mGraph, dimensions);
}

void AQE_FactFinder::Dump(std::ostream& out)
{
    out << "FactFinder::Dump" << std::endl;
    qe::DumpFacts(mGraph, out);
}
