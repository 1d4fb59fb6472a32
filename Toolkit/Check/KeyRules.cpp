// Rules about joins beside the keys of the subjects that they join.

#include "Toolkit/Check/KeyRules.h"

#include "Source/Rules/Cardinality.h"

#include "Engine/Expression/ParseReport.h"
#include "Engine/Model/Model.h"
#include "IdClass.h"
#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Check/Rules.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace qe::tool {

namespace {

using Items = std::set<std::string>;

/// How the items that a join compares stand to the keys of an end.
struct EndKeys
{
    Items items{};
    bool isToMany = false;
    bool hasKeys = false;
    bool holdsKey = false;

    [[nodiscard]] bool MissesKey() const { return hasKeys && !items.empty() && !holdsKey; }
    /// Nothing speaks for one row.
    [[nodiscard]] bool MayBeMany() const { return isToMany && !holdsKey; }
};

/// Both ends of a join.
class JoinKeys
{
public:
    JoinKeys(const ModelGraph& model, const ModelJoin& join) : mModel(model)
    {
        if (join.id.classCode == IdClassShortcutJoin)
            return;
        for (const expression::NamedReference& reference :
             expression::FindReferences(join.condition).references) {
            const auto resolved = model.GetGateway().ResolveReference(reference.names);
            if (resolved && resolved->referencedId.classCode == IdClassQueryItem)
                mItems[resolved->querySubjectId].insert(
                    model.GetModel().Find(resolved->referencedId)->name);
        }
        left = ReadEnd(model.GetSubjects()[join.left], model.GetSubjects()[join.right]);
        right = ReadEnd(model.GetSubjects()[join.right], model.GetSubjects()[join.left]);
        left.isToMany = IsToMany(join.leftCardinality);
        right.isToMany = IsToMany(join.rightCardinality);
    }

    /// Returns the end that the join counts on wrongly, or that made it "many" at both ends; null
    /// when there is none.
    [[nodiscard]] const EndKeys* FindFault() const
    {
        if (left.MayBeMany() && right.MayBeMany()) {
            if (right.MissesKey())
                return &right;
            return left.MissesKey() ? &left : nullptr;
        }
        for (const EndKeys* const end : {&right, &left}) {
            if (!end->isToMany && end->MissesKey())
                return end;
        }
        return nullptr;
    }

    EndKeys left;
    EndKeys right;

private:
    /// An end may be called by what it stands for, unless the other end stands for the same.
    [[nodiscard]] EndKeys ReadEnd(const amd_id& end, const amd_id& otherEnd) const
    {
        const amd_id target = mModel.GetModel().GetTarget(end);
        auto found = mItems.find(end);
        if (found == mItems.end() && target != mModel.GetModel().GetTarget(otherEnd))
            found = mItems.find(target);
        EndKeys keys{.items = found == mItems.end() ? Items() : found->second};
        const model::ObjectRecord* const record = mModel.GetModel().Find(target);
        if (record == nullptr)
            return keys;
        keys.hasKeys = !record->keys.empty();
        keys.holdsKey =
            std::any_of(record->keys.begin(), record->keys.end(), [&keys](const auto& key) {
                return std::all_of(key.begin(), key.end(), [&keys](const std::string& item) {
                    return keys.items.count(item) > 0;
                });
            });
        return keys;
    }

    const ModelGraph& mModel;
    std::map<amd_id, Items> mItems;
};

Finding Describe(const ModelGraph& model, const ModelJoin& join, const JoinKeys& keys)
{
    const bool isLeft = keys.FindFault() == &keys.left;
    const EndKeys& end = isLeft ? keys.left : keys.right;
    const std::string name = model.NameOf(join.id);
    const std::string subject = model.NameOf(isLeft ? join.left : join.right);
    const std::string other = model.NameOf(isLeft ? join.right : join.left);
    return {.place = {join.id},
            .placeText = name,
            .text = "The join " + name + " finds rows of " + subject + " by " +
                    JoinTexts(end.items) + ", which hold none of its keys: one row of " + other +
                    " may meet several" + (end.isToMany ? "." : ", though the join counts on one."),
            .advice =
                "Compare all items of a key of " + subject +
                (end.isToMany ? ", or sum before joining." : ", or set the cardinality to many.")};
}

} // namespace

bool MissesKeys(const ModelGraph& model, const ModelJoin& join)
{
    return JoinKeys(model, join).FindFault() != nullptr;
}

RuleFindings FindJoinsWithoutKeys(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    for (const ModelJoin& join : model.GetJoins()) {
        const JoinKeys keys(model, join);
        if (keys.FindFault() != nullptr)
            Record(found, limits, [&] { return Describe(model, join, keys); });
    }
    return found;
}

} // namespace qe::tool
