#ifndef INCLUDE_AQE_I_FACTFINDER_H
#define INCLUDE_AQE_I_FACTFINDER_H

#include "AUT_RefPtr.h"
#include "QEREFINER_EXPORT.h"
#include "amd_id.h"

#include <iosfwd>
#include <vector>

class AQE_I_FactFinder;

extern template class QEREFINER_EXPORT AUT_RefPtr<AQE_I_FactFinder>;

/// Distinguishes facts from dimensions among the query subjects of a set of joins.
///
/// Query subjects joined one-to-one count as one. In a one-to-many join the to-one side is a
/// dimension of the to-many side; what is nobody's dimension is a fact. Joins are given one at a
/// time and stay; questions may be asked at any time in between. All results are appended.
class QEREFINER_EXPORT AQE_I_FactFinder
{
public:
    virtual ~AQE_I_FactFinder();

    /// Makes an empty fact finder.
    [[nodiscard]] static AUT_RefPtr<AQE_I_FactFinder> Create();

    /// Writes what has been gathered and the answers to the three questions, for people.
    virtual void Dump(std::ostream& out) = 0;

    /// Adds a join between `left` and `right`. Each end comes with its maximum cardinality: 10 or
    /// 11 for to-one, 12 for to-many. `joinId` is not used.
    ///
    /// Raises an HBNException of severity 1 and code -1 when a cardinality is another number or
    /// both ends are to-many (the join is then left out), and when the one-to-many joins form a
    /// cycle (the join then stays).
    virtual void AddJoin(amd_id joinId, amd_id left, int leftMax, amd_id right, int rightMax) = 0;

    /// Appends the dimensions of the query subject that are not yet in `dimensions`: its own, and
    /// with `recursive` those of its dimensions, depth first. An unknown id has none; a null
    /// `dimensions` takes nothing.
    virtual void GetDimensions(amd_id id, std::vector<amd_id>* dimensions, bool recursive) = 0;

    /// Appends the facts, in the order in which they became facts.
    virtual void GetFacts(std::vector<amd_id>& facts) = 0;

    /// Appends the dimensions that all facts have in common. With several facts the whole vector
    /// ends up sorted, and what it held before takes part in the intersection; a single fact is
    /// appended itself.
    virtual void GetSharedDimensions(std::vector<amd_id>& dimensions) = 0;
};

#endif
