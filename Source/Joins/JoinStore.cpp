#include "Joins/JoinStore.h"

#include <algorithm>
#include <utility>

namespace qe {

const JoinStore::PackedJoin* JoinStore::FindPacked(const amd_id& id) const
{
    // What is read comes mostly in the order of its ids, and is then not there yet.
    if (mPacked.empty() || mPacked.back().id < id)
        return nullptr;
    const auto found = std::partition_point(
        mPacked.begin(), mPacked.end(), [&id](const PackedJoin& packed) { return packed.id < id; });
    return found->id == id ? &*found : nullptr;
}

const JoinStore::QEjoinInfo* JoinStore::FindOther(const amd_id& id) const
{
    if (mOthers.empty())
        return nullptr;
    const auto found = mOthers.find(id);
    return found == mOthers.end() ? nullptr : &found->second;
}

std::optional<WeighedJoin> JoinStore::Find(const amd_id& id) const
{
    if (const QEjoinInfo* const other = FindOther(id))
        return WeighedJoin{
            .ends = {.left = other->leftQuerySubject, .right = other->rightQuerySubject},
            .weight = other->weight};
    const PackedJoin* const packed = FindPacked(id);
    return packed == nullptr ? std::nullopt : std::optional(packed->join);
}

bool JoinStore::Copy(const amd_id& id, QEjoinInfo& info) const
{
    if (const QEjoinInfo* const other = FindOther(id)) {
        info = *other;
        return true;
    }
    const PackedJoin* const packed = FindPacked(id);
    if (packed == nullptr)
        return false;
    info = {.weight = packed->join.weight,
            .joinId = packed->joinId,
            .name = packed->name,
            .leftQuerySubject = packed->join.ends.left,
            .rightQuerySubject = packed->join.ends.right,
            .expression = packed->expression,
            .leftCardinality = packed->leftCardinality,
            .rightCardinality = packed->rightCardinality};
    return true;
}

void JoinStore::Reserve(std::size_t count)
{
    if (mPacked.empty())
        mPacked.reserve(count);
}

void JoinStore::Keep(const amd_id& id, const QEjoinInfo& info)
{
    const bool isOther = FindOther(id) != nullptr;
    if (!isOther && (mPacked.empty() || mPacked.back().id < id)) {
        Pack(id, info);
        return;
    }
    const bool isKnown = isOther || FindPacked(id) != nullptr;
    mOthers.insert_or_assign(id, QEjoinInfo(info));
    mReplacedCount += isKnown ? 1 : 0;
}

void JoinStore::Pack(const amd_id& id, const QEjoinInfo& info)
{
    const std::string_view name = info.name.View();
    const std::string_view expression = info.expression.View();
    const std::size_t length = name.size() + expression.size();
    char* const texts = length == 0 ? nullptr : static_cast<char*>(mTexts.allocate(length, 1));
    std::copy(expression.begin(), expression.end(), std::copy(name.begin(), name.end(), texts));
    // Filled in place: a record that is made beside the list and copied there as a whole waits for
    // its own stores, which a first request feels.
    PackedJoin& packed = mPacked.emplace_back();
    packed.id = id;
    packed.joinId = info.joinId;
    packed.join = {.ends = {.left = info.leftQuerySubject, .right = info.rightQuerySubject},
                   .weight = info.weight};
    packed.leftCardinality = info.leftCardinality;
    packed.rightCardinality = info.rightCardinality;
    packed.name = {texts, name.size()};
    packed.expression = {texts + name.size(), expression.size()};
}

} // namespace qe
