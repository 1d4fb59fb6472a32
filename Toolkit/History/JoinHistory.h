#ifndef TOOLKIT_HISTORY_JOINHISTORY_H
#define TOOLKIT_HISTORY_JOINHISTORY_H

#include "Toolkit/History/PastQuery.h"
#include "Toolkit/History/SchemaColumns.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace qe::tool {

/// A join that people make must have been made by so large a part of the queries that have both
/// its tables to be offered where the model does not declare it: one in so many.
inline constexpr std::size_t kLeastShareOfPastJoins = 5;

/// What past queries say of the joins between the tables of one model. A query uses the declared
/// joins of which it writes all column pairs, less those contained in a larger one of the same two
/// tables. What is left of its pairs between two tables, unless the joins that it uses make these
/// columns equal already, is one past join. Queries of the same text count once.
class JoinHistory
{
public:
    using Number = SchemaColumns::Number;
    /// Two columns, the lesser table's first.
    using Pair = std::pair<Number, Number>;

    /// A declared join, or one that past queries made. Joins of the same columns are one.
    struct Join
    {
        Number leftTable = 0;
        Number rightTable = 0;
        /// In order.
        std::vector<Pair> pairs{};
        /// The joins of the model; the id that a past join was given.
        std::vector<amd_id> ids{};
        bool isDeclared = false;
        /// How many queries used it.
        std::size_t uses = 0;
    };

    /// One text, as it counts.
    struct Use
    {
        std::string place{};
        std::string id{};
        std::vector<std::size_t> joins{};
        std::vector<Number> tables{};
        std::size_t count = 0;
        bool isForgotten = false;
    };

    /// Knows the joins of the model, and no queries. Copies what it needs of the model.
    explicit JoinHistory(const model::Model& model);

    /// Counts the query, and returns the position of its use; a text that is known counts nothing.
    std::size_t Add(const PastQuery& query);
    /// Takes a use out of the counts, or puts it back.
    void Forget(std::size_t use);
    void Remember(std::size_t use);
    /// Gives a past join its id in the model that it was added to.
    void SetId(std::size_t pastJoin, const amd_id& id);

    [[nodiscard]] const SchemaColumns& GetColumns() const { return mColumns; }
    [[nodiscard]] const std::vector<Join>& GetJoins() const { return mJoins; }
    [[nodiscard]] const std::vector<Use>& GetUses() const { return mUses; }
    /// The names of tables and columns that the model does not have, as queries write them.
    [[nodiscard]] const std::map<std::string, std::size_t>& GetUnknownNames() const
    {
        return mUnknownNames;
    }

    /// Returns how many queries used the join; 0 for one that it does not know.
    [[nodiscard]] std::size_t CountUses(const amd_id& join) const;
    /// Returns the position of the join, or the number of joins.
    [[nodiscard]] std::size_t FindJoin(const amd_id& join) const;
    /// Returns how many queries have both tables of the join.
    [[nodiscard]] std::size_t CountTogether(const Join& join) const;
    /// Returns whether enough people make this join that the model lacks.
    [[nodiscard]] bool IsOffered(const Join& join) const;

private:
    using TablePair = std::pair<Number, Number>;
    using Groups = std::map<TablePair, std::vector<Pair>>;

    struct PairHash
    {
        std::size_t operator()(const TablePair& tables) const
        {
            return std::hash<std::uint64_t>()(std::uint64_t{tables.first} << 32U | tables.second);
        }
    };

    void AddDeclared(const model::Model& model, const amd_id& id);
    [[nodiscard]] std::size_t FindOrAdd(const TablePair& tables, std::vector<Pair> pairs);
    /// Returns the pairs of the query between the tables of the model, by tables.
    [[nodiscard]] Groups GroupPairs(const PastQuery& query);
    [[nodiscard]] std::vector<Number> FindTables(const PastQuery& query);
    [[nodiscard]] std::vector<std::size_t> FindJoins(const Groups& groups);
    [[nodiscard]] std::vector<std::size_t> FindUsed(const TablePair& tables,
                                                    std::span<const Pair> pairs) const;
    /// Finds the joins and tables of the query, or takes them from a use of the same ones.
    void Fill(Use& use, const PastQuery& query);
    void Count(const Use& use, bool isRemembered);

    SchemaColumns mColumns;
    std::vector<Join> mJoins;
    std::map<std::vector<Pair>, std::size_t> mJoinsByPairs;
    std::unordered_map<TablePair, std::vector<std::size_t>, PairHash> mDeclaredJoins;
    std::map<amd_id, std::size_t> mJoinsById;
    std::vector<Use> mUses;
    std::unordered_map<std::string, std::size_t> mUsesByText;
    /// By tables and pairs: the first use of each that names nothing unknown.
    std::unordered_map<std::string, std::size_t> mUsesByJoins;
    /// How many queries have both tables.
    std::unordered_map<TablePair, std::size_t, PairHash> mTogether;
    std::map<std::string, std::size_t> mUnknownNames;
};

} // namespace qe::tool

#endif
