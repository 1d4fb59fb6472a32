#include "Toolkit/Ask/DetailRule.h"

#include "Engine/Model/Model.h"
#include "Source/Rules/Cardinality.h"
#include "Toolkit/Ask/KeyChoice.h"

#include <algorithm>
#include <cstddef>

namespace qe::tool {

namespace {

/// So many dimensions more than its detail a fact has at least.
constexpr std::size_t kMoreDimensions = 3;

using Words = std::vector<std::string>;

Words SplitSingular(std::string_view name)
{
    Words words = SplitWords(name);
    for (std::string& word : words) {
        if (word.size() > 3 && word.back() == 's')
            word.pop_back();
    }
    return words;
}

} // namespace

bool IsNamedAfter(std::string_view name, std::string_view other)
{
    const Words words = SplitSingular(name);
    Words begin = SplitSingular(other);
    if (begin.size() > 1 && begin.back() == "header")
        begin.pop_back();
    return !begin.empty() && begin.size() < words.size() &&
           std::equal(begin.begin(), begin.end(), words.begin());
}

namespace {

/// Returns whether all words of the one name stand in the other.
bool HoldsName(std::string_view name, std::string_view other)
{
    const Words words = SplitSingular(name);
    const Words sought = SplitSingular(other);
    return std::all_of(sought.begin(), sought.end(), [&words](const std::string& word) {
        return std::find(words.begin(), words.end(), word) != words.end();
    });
}

} // namespace

DetailRule::DetailRule(const model::Model& model) : mModel(model)
{
    for (const amd_id& id : model.GetJoins()) {
        const model::ObjectRecord* const join = model.Find(id);
        const model::ObjectRecord* const stated = model.Find(model.GetTarget(id));
        if (stated == nullptr ||
            IsToMany(stated->leftCardinality) == IsToMany(stated->rightCardinality))
            continue;
        const bool leftIsMany = IsToMany(stated->leftCardinality);
        const amd_id& many = leftIsMany ? join->left : join->right;
        const amd_id& one = leftIsMany ? join->right : join->left;
        if (many != one)
            mDimensions[model.GetTarget(many)].push_back(one);
    }
    for (auto& [subject, dimensions] : mDimensions) {
        std::sort(dimensions.begin(), dimensions.end());
        dimensions.erase(std::unique(dimensions.begin(), dimensions.end()), dimensions.end());
    }
}

bool DetailRule::LeadsFromDetail(const AnswerJoin& join) const
{
    const bool leftIsMany = IsToMany(join.leftCardinality);
    if (leftIsMany == IsToMany(join.rightCardinality) || join.left == join.right)
        return false;
    const amd_id detail = mModel.GetTarget(leftIsMany ? join.left : join.right);
    const amd_id fact = mModel.GetTarget(leftIsMany ? join.right : join.left);
    const Ids& ofDetail = GetDimensions(detail);
    const auto isOther = [&](const amd_id& id) { return mModel.GetTarget(id) != fact; };
    if (IsNamedAfter(NameOf(detail), NameOf(fact)))
        return std::none_of(ofDetail.begin(), ofDetail.end(), [&](const amd_id& id) {
            return isOther(id) && HoldsName(NameOf(detail), NameOf(mModel.GetTarget(id)));
        });
    const auto others =
        static_cast<std::size_t>(std::count_if(ofDetail.begin(), ofDetail.end(), isOther));
    return GetDimensions(fact).size() >= others + kMoreDimensions;
}

const DetailRule::Ids& DetailRule::GetDimensions(const amd_id& subject) const
{
    static const Ids kNone;
    const auto found = mDimensions.find(subject);
    return found == mDimensions.end() ? kNone : found->second;
}

const std::string& DetailRule::NameOf(const amd_id& subject) const
{
    return mModel.Find(subject)->name;
}

} // namespace qe::tool
