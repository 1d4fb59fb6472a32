#ifndef SOURCE_QEFACTFINDER_H
#define SOURCE_QEFACTFINDER_H

#include "AQE_I_FactFinder.h"
#include "Rules/FactGraph.h"
#include "amd_id.h"

#include <iosfwd>
#include <vector>

/// The fact finder: sorts joins by their cardinalities into a graph and reads the answers off it.
/// It looks at nothing but the ids and cardinalities that it is given. Its operations ask each
/// other through the interface, so that a derived class may answer differently.
class AQE_FactFinder : public AQE_I_FactFinder
{
public:
    AQE_FactFinder();
    ~AQE_FactFinder() override;

    void Dump(std::ostream& out) override;
    void AddJoin(amd_id joinId, amd_id left, int leftMax, amd_id right, int rightMax) override;
    void GetDimensions(amd_id id, std::vector<amd_id>* dimensions, bool recursive) override;
    void GetFacts(std::vector<amd_id>& facts) override;
    void GetSharedDimensions(std::vector<amd_id>& dimensions) override;

private:
    void DumpFacts(std::ostream& out);
    void DumpSharedDimensions(std::ostream& out);

    qe::FactGraph mGraph;
};

#endif
