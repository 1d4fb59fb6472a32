#ifndef SOURCE_JOINTREE_JOINTREELOG_H
#define SOURCE_JOINTREE_JOINTREELOG_H

#include "AQE_LogFile.h"
#include "I18NString.h"
#include "Joins/JoinInfoReader.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

class amdi_gateway;

template <typename T>
class AUT_RefPtr;

namespace qe {

/// One shortest path between two nodes of the candidate graph, as the pairwise growth keeps it.
struct JoinDistance
{
    amd_id from;
    amd_id to;
    /// The joins of the path in walking order.
    std::vector<amd_id> path;
    std::int32_t weight = 0;
    /// Positions of the two nodes in the label array; -1 for a node outside it.
    std::int32_t fromIndex = -1;
    std::int32_t toIndex = -1;

    /// Returns whether both lead from the same node to the same node, by whatever path.
    [[nodiscard]] bool IsSameDistance(const JoinDistance& other) const
    {
        return from == other.from && to == other.to;
    }
};

/// Writes how a join tree grows to the log, at level 7. Nothing is composed, and the gateway is
/// not asked for names, when that level is off.
class JoinTreeLog
{
public:
    using Ids = std::vector<amd_id>;
    using PendingDistances = std::vector<AUT_RefPtr<JoinDistance>>;

    /// Borrows both; the gateway may be null.
    JoinTreeLog(amdi_gateway* gateway, const JoinEndsReader& endsReader);

    /// Returns whether anything is written.
    [[nodiscard]] bool IsOn() const;

    void LogEntities(const Ids& entities);
    /// Writes a shortest path between two entities, or that there is none (a negative weight).
    void LogPath(const Ids& path, int weight);
    void LogAdded(const JoinDistance& distance);
    void LogDistanceCount(std::size_t count);
    /// Writes which distance is merged next; null when none is left.
    void LogProcessing(const JoinDistance* distance);
    void LogRemaining(const PendingDistances& pending);
    void LogLibraryTree(std::size_t nodeCount, std::size_t edgeCount);
    void LogClosingAt(const amd_id& entity, std::size_t joinCount);
    void LogClosingJoin(const JoinEnds& ends);

private:
    void Write(std::string_view text);
    [[nodiscard]] I18NString GetName(const amd_id& id) const;
    [[nodiscard]] I18NString GetEndName(const amd_id& id) const;

    amdi_gateway* mGateway;
    const JoinEndsReader& mEndsReader;
    AQE_LogFile mFile;
};

} // namespace qe

#endif
