#include "Toolkit/History/PastJoins.h"

#include "Engine/Model/Model.h"
#include "Source/Rules/Cardinality.h"
#include "Toolkit/History/JoinHistory.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace qe::tool {

namespace {

using Number = JoinHistory::Number;
using Columns = std::set<Number>;

/// Makes joins of the query of past joins.
class PastJoinMaker
{
public:
    PastJoinMaker(const model::Model& model, JoinHistory& history)
        : mModel(model), mHistory(history)
    {
        FindKeys();
    }

    [[nodiscard]] std::vector<model::ObjectRecord> Make(EPastJoins which)
    {
        std::vector<model::ObjectRecord> records;
        amd_id next{0, IdClassSpecJoin, 0};
        for (std::size_t position = 0; position < mHistory.GetJoins().size(); ++position) {
            const JoinHistory::Join& join = mHistory.GetJoins()[position];
            const bool isWanted =
                which == EPastJoins::All ? !join.isDeclared : mHistory.IsOffered(join);
            if (!isWanted || !join.ids.empty() || !HasUniqueNames(join))
                continue;
            do {
                ++next.number;
            } while (mModel.Find(next) != nullptr);
            records.push_back(MakeRecord(next, join));
            mHistory.SetId(position, next);
        }
        return records;
    }

private:
    using Join = JoinHistory::Join;
    using EEnd = Number JoinHistory::Pair::*;

    void FindKeys();
    [[nodiscard]] bool HasUniqueNames(const Join& join) const;
    [[nodiscard]] model::ObjectRecord MakeRecord(const amd_id& id, const Join& join) const;
    [[nodiscard]] model::CardinalityRange CardinalityOf(const Join& join, EEnd end) const;
    [[nodiscard]] const model::ObjectRecord& ItemOf(Number column) const
    {
        return *mModel.Find(mHistory.GetColumns().GetColumn(column).item);
    }

    const model::Model& mModel;
    JoinHistory& mHistory;
    /// The columns that relationships refer to as those of one row.
    std::set<Columns> mKeys;
};

void PastJoinMaker::FindKeys()
{
    for (const Join& join : mHistory.GetJoins()) {
        if (!join.isDeclared)
            continue;
        const model::ObjectRecord* const record = mModel.Find(mModel.GetTarget(join.ids.front()));
        const amd_id leftSubject = mHistory.GetColumns().GetTable(join.leftTable).subject;
        const bool isLeftFirst = mModel.GetTarget(record->left) == leftSubject;
        const auto& ofLeft = isLeftFirst ? record->leftCardinality : record->rightCardinality;
        const auto& ofRight = isLeftFirst ? record->rightCardinality : record->leftCardinality;
        const auto add = [&](const model::CardinalityRange& cardinality, EEnd end) {
            if (IsToMany(cardinality))
                return;
            Columns columns;
            for (const JoinHistory::Pair& pair : join.pairs)
                columns.insert(pair.*end);
            mKeys.insert(std::move(columns));
        };
        add(ofLeft, &JoinHistory::Pair::first);
        add(ofRight, &JoinHistory::Pair::second);
    }
}

bool PastJoinMaker::HasUniqueNames(const Join& join) const
{
    const SchemaColumns& columns = mHistory.GetColumns();
    const auto isUnique = [&columns](Number column) {
        return columns.GetColumn(column).item != amd_id() &&
               columns.GetTable(columns.GetColumn(column).table).subject != amd_id();
    };
    return std::all_of(join.pairs.begin(), join.pairs.end(), [&](const JoinHistory::Pair& pair) {
        return isUnique(pair.first) && isUnique(pair.second);
    });
}

model::CardinalityRange PastJoinMaker::CardinalityOf(const Join& join, EEnd end) const
{
    Columns columns;
    for (const JoinHistory::Pair& pair : join.pairs)
        columns.insert(pair.*end);
    const bool holdsKey = std::any_of(mKeys.begin(), mKeys.end(), [&](const Columns& key) {
        return std::includes(columns.begin(), columns.end(), key.begin(), key.end());
    });
    return holdsKey ? model::kZeroToOne : model::kZeroToMany;
}

model::ObjectRecord PastJoinMaker::MakeRecord(const amd_id& id, const Join& join) const
{
    const SchemaColumns& columns = mHistory.GetColumns();
    std::string condition;
    std::string names;
    for (const auto& [left, right] : join.pairs) {
        const auto reference = [&](Number column) {
            return model::ToReferenceText(mModel.GetQualifiedName(ItemOf(column).id));
        };
        condition +=
            (condition.empty() ? "" : " AND ") + reference(left) + " = " + reference(right);
        names += (names.empty() ? "" : ", ") + ItemOf(left).name +
                 (ItemOf(left).name == ItemOf(right).name ? "" : " = " + ItemOf(right).name);
    }
    model::ObjectRecord record;
    record.id = id;
    record.name = "past " + columns.GetTable(join.leftTable).displayName + '-' +
                  columns.GetTable(join.rightTable).displayName + " (" + names + ')';
    record.displayName = record.name;
    record.text = condition;
    record.left = columns.GetTable(join.leftTable).subject;
    record.right = columns.GetTable(join.rightTable).subject;
    record.leftCardinality = CardinalityOf(join, &JoinHistory::Pair::first);
    record.rightCardinality = CardinalityOf(join, &JoinHistory::Pair::second);
    return record;
}

} // namespace

std::shared_ptr<const model::Model> AddPastJoins(const model::Model& model, JoinHistory& history,
                                                 EPastJoins which)
{
    std::vector<model::ObjectRecord> records = PastJoinMaker(model, history).Make(which);
    const auto ofModel = model.GetRecords();
    records.insert(records.end(), ofModel.begin(), ofModel.end());
    return std::make_shared<const model::Model>(model::ObjectTable(std::move(records)),
                                                model.GetLocale({}).GetTag().ToStdString());
}

} // namespace qe::tool
