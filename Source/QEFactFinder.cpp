#include "QEFactFinder.h"

#include "Joins/GatewayCalls.h"

#include <algorithm>
#include <iterator>
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
    qe::RaiseUnlessAdded(mGraph.AddJoin({.subject = mGraph.GetNumber(left), .maximum = leftMax},
                                        {.subject = mGraph.GetNumber(right), .maximum = rightMax}));
}

void AQE_FactFinder::GetDimensions(amd_id id, std::vector<amd_id>* dimensions, bool recursive)
{
    const qe::FactNode* const node = mGraph.Find(id);
    if (node == nullptr || dimensions == nullptr)
        return;
    for (const qe::FactNode* const child : node->mChildren) {
        for (const amd_id& dimension : child->mIds) {
            if (std::find(dimensions->begin(), dimensions->end(), dimension) != dimensions->end())
                continue;
            dimensions->push_back(dimension);
            if (recursive)
                GetDimensions(dimension, dimensions, recursive);
        }
    }
}

void AQE_FactFinder::GetFacts(std::vector<amd_id>& facts)
{
    for (const qe::FactNode* const root : mGraph.GetRoots())
        facts.push_back(root->mIds.front());
}

void AQE_FactFinder::GetSharedDimensions(std::vector<amd_id>& dimensions)
{
    const std::vector<qe::FactNode*>& roots = mGraph.GetRoots();
    if (roots.empty())
        return;
    const amd_id firstFact = roots.front()->mIds.front();
    if (roots.size() == 1) {
        // What everything shares when there is a single fact is the fact itself.
        dimensions.push_back(firstFact);
        return;
    }
    GetDimensions(firstFact, &dimensions, true);
    std::sort(dimensions.begin(), dimensions.end());
    for (auto root = std::next(roots.begin()); root != roots.end(); ++root) {
        std::vector<amd_id> further;
        GetDimensions((*root)->mIds.front(), &further, true);
        std::sort(further.begin(), further.end());
        std::vector<amd_id> common;
        std::set_intersection(dimensions.begin(), dimensions.end(), further.begin(), further.end(),
                              std::back_inserter(common));
        dimensions.swap(common);
    }
}

void AQE_FactFinder::Dump(std::ostream& out)
{
    out << "FactFinder::Dump" << std::endl;
    mGraph.Dump(out);
    DumpFacts(out);
    DumpSharedDimensions(out);
}

void AQE_FactFinder::DumpFacts(std::ostream& out)
{
    out << "Facts:" << std::endl;
    std::vector<amd_id> facts;
    GetFacts(facts);
    for (const amd_id& fact : facts) {
        // Every fact line shows the same unset pair; the trees above name the facts.
        out << "    " << ToText(amd_id{}) << std::endl;
        std::vector<amd_id> dimensions;
        GetDimensions(fact, &dimensions, true);
        out << "    -->";
        for (const amd_id& dimension : dimensions)
            out << ' ' << ToText(dimension);
        out << std::endl;
    }
}

void AQE_FactFinder::DumpSharedDimensions(std::ostream& out)
{
    out << "Shared Dimensions:" << std::endl;
    std::vector<amd_id> dimensions;
    GetSharedDimensions(dimensions);
    for (const amd_id& dimension : dimensions)
        out << "    " << ToText(dimension) << std::endl;
}
