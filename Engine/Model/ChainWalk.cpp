#include "Engine/Model/ChainWalk.h"

#include <limits>

namespace qe::model {

namespace {

constexpr std::size_t Circular = std::numeric_limits<std::size_t>::max();
constexpr std::size_t Unknown = Circular - 1;
constexpr std::size_t OnTheWay = Circular - 2;

} // namespace

ChainWalk::ChainWalk(const ObjectTable& table,
                     const std::function<amd_id(const ObjectRecord&)>& next)
    : mTable(&table), mLengths(table.GetRecords().size(), Unknown)
{
    const std::span<const ObjectRecord> records = table.GetRecords();
    std::vector<std::size_t> way;
    for (std::size_t start = 0; start < records.size(); ++start) {
        // The length that the next object on the way back gets.
        std::size_t length = 0;
        const ObjectRecord* record = &records[start];
        for (way.clear(); record != nullptr; record = table.Find(next(*record))) {
            const auto position = static_cast<std::size_t>(record - records.data());
            if (mLengths[position] != Unknown) {
                const bool endless =
                    mLengths[position] == OnTheWay || mLengths[position] == Circular;
                length = endless ? Circular : mLengths[position] + 1;
                break;
            }
            mLengths[position] = OnTheWay;
            way.push_back(position);
        }
        for (; !way.empty(); way.pop_back()) {
            mLengths[way.back()] = length;
            length = length == Circular ? Circular : length + 1;
        }
    }
}

EChain ChainWalk::Classify(const amd_id& id) const
{
    const ObjectRecord* record = mTable->Find(id);
    if (record == nullptr)
        return EChain::Ends;
    const std::size_t length =
        mLengths[static_cast<std::size_t>(record - mTable->GetRecords().data())];
    if (length == Circular)
        return EChain::Cyclic;
    return length > kMaximumChain ? EChain::TooLong : EChain::Ends;
}

} // namespace qe::model
