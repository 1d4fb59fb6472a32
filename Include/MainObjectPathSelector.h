#ifndef INCLUDE_MAINOBJECTPATHSELECTOR_H
#define INCLUDE_MAINOBJECTPATHSELECTOR_H

#include "AQE_I_PathSelector.h"
#include "QEREFINER_EXPORT.h"
#include "amd_id.h"

#include <array>
#include <cstdint>
#include <vector>

class AQE_RequestContext;

/// Chooses the first join path that has a main object: a query subject from which every join of
/// the path leads towards the "one" side, so that the query reads as rows of that object extended
/// by look-ups.
///
/// An end of a join is "many" when either bound of its cardinality is 12, and optional when either
/// is 10. The selector can be handed to the refiner, or asked about plain paths. Its results stay
/// and grow from one path to the next. One thread at a time uses a selector.
class QEREFINER_EXPORT MainObjectPathSelector : public AQE_I_PathSelector
{
public:
    /// Three ids that belong together, for the caller's own use.
    using Triple = std::array<amd_id, 3>;

    /// What counts as a main object.
    struct Options
    {
        /// A main object has no optional end at its own joins, and nothing is reached through an
        /// optional end.
        bool checkOptional = false;
        /// Only the subjects may become the main object. Otherwise those query subjects of the
        /// path may from which it fans out most, the subjects among them first.
        bool subjectsAreCandidates = true;
    };

    /// Makes a selector for a query over the subjects. Joins are read through the gateway and the
    /// request's join cache; both are borrowed and `requestContext` may be null. Without a gateway
    /// only joins in the cache can be read.
    MainObjectPathSelector(amdi_gateway* gateway, AQE_RequestContext* requestContext,
                           std::vector<amd_id> subjects, const Options& options);
    MainObjectPathSelector(const MainObjectPathSelector&) = delete;
    MainObjectPathSelector& operator=(const MainObjectPathSelector&) = delete;
    ~MainObjectPathSelector() override;

    /// Returns the index of the first path that has a main object; 0 also when there is none, which
    /// HasMainObject tells apart. A query over a single subject accepts any path. Raises an
    /// ORVAssertError when a join that was read once cannot be read again.
    std::uint32_t
    SelectPath(const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors) override;

    /// Returns what SelectPath returns, for plain join paths.
    std::uint32_t SelectAlternative(const std::vector<std::vector<amd_id>>& paths) override;

    /// Keeps the triple (c, b, a), after dropping all earlier ones when `clearFirst` is set. The
    /// choice does not depend on triples.
    void AddTriple(const amd_id& a, const amd_id& b, const amd_id& c, bool clearFirst);

    /// Returns whether any path was accepted so far.
    [[nodiscard]] bool HasMainObject() const { return mFound; }

    /// Returns the main object of the path that was accepted last; the empty id before that.
    [[nodiscard]] const amd_id& GetMainObject() const { return mMainObject; }

    /// Returns the main object and the query subjects joined to it by joins that are exactly
    /// one-to-one at both ends, of all accepted paths.
    [[nodiscard]] const std::vector<amd_id>& GetOneToOneObjects() const { return mOneToOneObjects; }

    /// Returns the query subjects of the accepted paths: those of each path in id order, one path
    /// after the other. A query over a single subject adds none.
    [[nodiscard]] const std::vector<amd_id>& GetPathObjects() const { return mPathObjects; }

    [[nodiscard]] const std::vector<Triple>& GetTriples() const { return mTriples; }

private:
    [[nodiscard]] bool IsMainObjectPath(const std::vector<amd_id>& path);

    amdi_gateway* mGateway;
    Options mOptions;
    amd_id mMainObject;
    std::vector<amd_id> mOneToOneObjects;
    std::vector<amd_id> mPathObjects;
    bool mFound = false;
    std::vector<amd_id> mSubjects;
    std::vector<Triple> mTriples;
    AQE_RequestContext* mRequestContext;
};

#endif
