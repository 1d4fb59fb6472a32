#ifndef TOOLKIT_ASK_DETAILRULE_H
#define TOOLKIT_ASK_DETAILRULE_H

#include "Toolkit/Ask/Answer.h"
#include "amd_id.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qe::model {
class Model;
}

namespace qe::tool {

/// Returns whether the one name begins with the words of the other, as "order_items" and
/// "InvoiceLine" do with "orders" and "Invoice". A plural counts as its singular, and what follows
/// in "OrderHeader" as nothing.
[[nodiscard]] bool IsNamedAfter(std::string_view name, std::string_view other);

/// Tells which many-to-one joins lead from a detail to a fact, and not from a fact to one of its
/// dimensions: cardinalities alone do not tell an order beside its items from a product beside its
/// sales. The first is repeated against what its reader expects, the second as a dimension should
/// be.
class DetailRule
{
public:
    /// Looks once at all joins of the model, which must outlive this object.
    explicit DetailRule(const model::Model& model);

    /// Returns whether the subject at the "many" end is a detail of the other: it is named after
    /// it, and after none other that it is joined to in this way (a bridge would be); or the other
    /// has at least three dimensions more than it.
    [[nodiscard]] bool LeadsFromDetail(const AnswerJoin& join) const;

private:
    using Ids = std::vector<amd_id>;

    [[nodiscard]] const Ids& GetDimensions(const amd_id& subject) const;
    [[nodiscard]] const std::string& NameOf(const amd_id& subject) const;

    const model::Model& mModel;
    /// The subjects that each one is joined to by many-to-one joins, in order. By what shortcuts
    /// stand for; the dimensions themselves are as the joins name them.
    std::map<amd_id, Ids> mDimensions;
};

} // namespace qe::tool

#endif
