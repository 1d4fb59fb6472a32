#ifndef TOOLKIT_ASK_ROWGRAPH_H
#define TOOLKIT_ASK_ROWGRAPH_H

#include "Toolkit/Ask/JoinPlan.h"
#include "Toolkit/Ask/JoinSweep.h"

#include <cstddef>
#include <set>
#include <vector>

namespace qe::tool {

/// How many rows of one table of a path meet a row of another. Tables that are joined one-to-one
/// have the same rows, so they make one entity; a many-to-one join leads up from the entity at its
/// one end to that at its "many" end.
class RowGraph
{
public:
    using Tables = std::vector<std::size_t>;
    /// In path order.
    using Joins = std::vector<const TableJoin*>;

    struct UpStep
    {
        std::size_t upper = 0;
        const TableJoin* join = nullptr;
    };

    /// Refers to the path.
    explicit RowGraph(const PathTables& path);

    [[nodiscard]] std::size_t GetEntityCount() const { return mMembers.size(); }
    [[nodiscard]] std::size_t EntityOf(std::size_t table) const { return mEntities[table]; }
    /// Returns the tables of an entity, those of the question first.
    [[nodiscard]] const Tables& GetMembers(std::size_t entity) const { return mMembers[entity]; }
    [[nodiscard]] bool IsAsked(std::size_t entity) const;

    /// Returns the joins that lead up from the entity, one to each other one.
    [[nodiscard]] const std::vector<UpStep>& GetUpSteps(std::size_t entity) const
    {
        return mUpSteps[entity];
    }
    /// Returns whether no join leads up from it.
    [[nodiscard]] bool IsTop(std::size_t entity) const { return mUpSteps[entity].empty(); }
    /// Returns the tops that are reached upwards from the entity, itself included.
    [[nodiscard]] std::set<std::size_t> FindTops(std::size_t entity) const;
    /// Returns what is reached from an entity by any joins, but not over `barrier`.
    [[nodiscard]] std::set<std::size_t> FindSide(std::size_t entity, std::size_t barrier) const;
    /// Returns the entities in parts that no join connects.
    [[nodiscard]] std::vector<std::set<std::size_t>> FindParts() const;

    /// Returns whether several rows of the path may hold the same row of a table of the question.
    [[nodiscard]] bool IsRepeated(std::size_t table) const { return mIsRepeated[table]; }
    /// Returns the joins that lead to a "many" side on the way from the table.
    [[nodiscard]] Joins FindRepeating(std::size_t table) const;
    [[nodiscard]] Joins FindManyToMany() const;

private:
    void FindEntities();
    void FindUpSteps();
    [[nodiscard]] bool LeadsToAll(std::size_t table) const;

    const PathTables& mPath;
    JoinSweep<TableJoin> mSweep;
    std::vector<std::size_t> mEntities;
    std::vector<Tables> mMembers;
    std::vector<std::vector<UpStep>> mUpSteps;
    std::vector<bool> mIsRepeated;
};

} // namespace qe::tool

#endif
