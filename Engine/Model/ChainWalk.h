#ifndef ENGINE_MODEL_CHAINWALK_H
#define ENGINE_MODEL_CHAINWALK_H

#include "Engine/Model/ObjectTable.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace qe::model {

/// How a chain of references ends.
enum class EChain : std::uint8_t
{
    Ends,
    /// It is longer than kMaximumChain.
    TooLong,
    /// It meets some object twice.
    Cyclic,
};

/// Follows one kind of reference from every object of a table at once, in linear time however
/// long the chains are.
class ChainWalk
{
public:
    /// `next` gives the id that follows a record, empty at the end.
    ChainWalk(const ObjectTable& table, const std::function<amd_id(const ObjectRecord&)>& next);

    /// Tells how the chain from that object ends. An object that leads into a circle without
    /// being part of it counts as Circle too. Unknown ids have chains that end.
    [[nodiscard]] EChain Classify(const amd_id& id) const;

private:
    const ObjectTable* mTable;
    /// Objects that follow each one, by position in the table; Circular where that never ends.
    std::vector<std::size_t> mLengths;
};

} // namespace qe::model

#endif
