#ifndef TOOLKIT_ASK_JOINSWEEP_H
#define TOOLKIT_ASK_JOINSWEEP_H

#include <cstddef>
#include <set>
#include <vector>

namespace qe::tool {

/// Which joins of a path touch each of its tables, so that what is reached from a table takes time
/// in proportion to that.
template <typename Join>
class JoinSweep
{
public:
    /// Takes the joins of the path, in its order, and how many tables it has. Refers to the joins.
    JoinSweep(const std::vector<Join>& joins, std::size_t tables) : mJoins(joins), mTouching(tables)
    {
        for (std::size_t i = 0; i < mJoins.size(); ++i) {
            mTouching[mJoins[i].left].push_back(i);
            if (mJoins[i].right != mJoins[i].left)
                mTouching[mJoins[i].right].push_back(i);
        }
    }

    /// Returns the positions of the joins at a table in the path, in its order.
    [[nodiscard]] const std::vector<std::size_t>& GetTouching(std::size_t table) const
    {
        return mTouching[table];
    }
    [[nodiscard]] const Join& GetJoin(std::size_t position) const { return mJoins[position]; }

    /// Reaches from a table all that joins connect with it, as by going through the joins of the
    /// path in their order until none leads further. `visit` is called with each join that reaches
    /// a new table, and with that table.
    template <typename Visit>
    void Reach(std::size_t start, Visit visit) const
    {
        std::vector<bool> isReached(mTouching.size(), false);
        std::set<std::size_t> leading;
        const auto enter = [&](std::size_t table) {
            isReached[table] = true;
            for (const std::size_t position : mTouching[table]) {
                if (isReached[mJoins[position].OtherEnd(table)])
                    leading.erase(position);
                else
                    leading.insert(position);
            }
        };
        enter(start);
        for (std::size_t next = 0; !leading.empty();) {
            auto found = leading.lower_bound(next);
            if (found == leading.end())
                found = leading.begin();
            next = *found + 1;
            const Join& join = mJoins[*found];
            const std::size_t table = isReached[join.left] ? join.right : join.left;
            visit(join, table);
            enter(table);
        }
    }

private:
    const std::vector<Join>& mJoins;
    std::vector<std::vector<std::size_t>> mTouching;
};

} // namespace qe::tool

#endif
