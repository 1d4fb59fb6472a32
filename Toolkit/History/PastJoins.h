#ifndef TOOLKIT_HISTORY_PASTJOINS_H
#define TOOLKIT_HISTORY_PASTJOINS_H

#include <cstdint>
#include <memory>

namespace qe::model {
class Model;
}

namespace qe::tool {

class JoinHistory;

/// Which past joins a model gets.
enum class EPastJoins : std::uint8_t
{
    /// Those that enough people make.
    Offered,
    /// All that any query made: for one who asks with a part of the history at a time and leaves
    /// out what that part does not offer.
    All,
};

/// Returns the model with past joins as joins of the query, and tells the history their ids. How
/// many rows meet is concluded from what the model's relationships refer to; whether a partner is
/// always there is not known. A join between tables whose names are not unique is left out.
[[nodiscard]] std::shared_ptr<const model::Model>
AddPastJoins(const model::Model& model, JoinHistory& history, EPastJoins which);

} // namespace qe::tool

#endif
