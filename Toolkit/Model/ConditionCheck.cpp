#include "Toolkit/Model/ConditionCheck.h"

#include "Engine/Model/Names.h"
#include "Toolkit/Model/ModelWords.h"

#include <algorithm>

namespace qe::tool {

using model::ENameKind;
using model::QualifiedName;

namespace {

/// Suggestions read all names around the wrong one.
constexpr std::size_t kMaximumSuggestions = 100;

QualifiedName ToNames(const std::vector<I18NString>& texts)
{
    QualifiedName names;
    for (const I18NString& text : texts)
        names.push_back(text.ToStdString());
    return names;
}

std::string ToPlace(const TextPosition& position)
{
    return std::to_string(position.line) + ':' + std::to_string(position.column);
}

/// Returns the names with the one at `index` replaced by those near to it.
std::vector<std::string> ReplaceOne(const QualifiedName& names, std::size_t index,
                                    const std::vector<std::string_view>& candidates)
{
    std::vector<std::string> replaced;
    for (const std::string& near : model::NearestNames(names[index], candidates)) {
        QualifiedName changed = names;
        changed[index] = near;
        replaced.push_back(model::ToReferenceText(changed));
    }
    return replaced;
}

} // namespace

ConditionCheck::ConditionCheck(std::shared_ptr<const model::Model> model,
                               const std::set<std::string>& doubtfulNames, JsonProblems& problems)
    : mModel(std::move(model)),
      mDoubtfulNames(&doubtfulNames),
      mProblems(&problems),
      mGateway(mModel == nullptr ? nullptr : std::make_unique<model::ModelGateway>(mModel))
{}

void ConditionCheck::Check(const ContentObject& object)
{
    if (object.links == nullptr || object.links->condition.empty())
        return;
    const std::string pointer = ChildPointer(object.pointer, keys::kCondition);
    const expression::ParseReport report = expression::FindReferences(object.links->condition);
    if (report.error)
        mProblems->Add(pointer, "cannot be read at " + ToPlace(report.error->position) +
                                    ": expected " + report.error->expected + ", found " +
                                    report.error->found);
    if (mGateway == nullptr)
        return;
    for (const expression::NamedReference& reference : report.references)
        CheckReference(reference, pointer);
}

void ConditionCheck::CheckReference(const expression::NamedReference& reference,
                                    const std::string& pointer)
{
    if (IsDoubtful(reference.names) || mGateway->ResolveReference(reference.names))
        return;
    mProblems->Add(pointer,
                   "names at " + ToPlace(reference.position) + " what is not in the model: " +
                       model::ToReferenceText(ToNames(reference.names)),
                   mSuggestions++ < kMaximumSuggestions ? Suggest(reference.names)
                                                        : std::vector<std::string>());
}

bool ConditionCheck::IsDoubtful(const Names& names) const
{
    return std::any_of(names.begin(), names.end(), [this](const I18NString& name) {
        return mDoubtfulNames->count(name.ToStdString()) != 0;
    });
}

std::vector<std::string> ConditionCheck::Suggest(const Names& names) const
{
    const QualifiedName wrong = ToNames(names);
    if (wrong.size() != 3 && wrong.size() != 2)
        return SuggestParents(wrong);
    // Outside all namespaces the first of two names is the subject's.
    const std::size_t subjectIndex = wrong.size() - 2;
    const amd_id space = wrong.size() == 3 ? mModel->FindNamespace(wrong[0]) : amd_id();
    if (wrong.size() == 3 && space == amd_id())
        return ReplaceOne(wrong, 0, NamesOf(mModel->GetIds(model::IdClassNamespace)));

    const amd_id subject = mModel->FindExact(ENameKind::Subject, space, wrong[subjectIndex]);
    if (subject != amd_id())
        return ReplaceOne(wrong, subjectIndex + 1, NamesOf(mModel->GetItems(subject)));
    std::vector<std::string> complete = SuggestParents(wrong);
    if (!complete.empty())
        return complete;
    std::vector<amd_id> beside;
    for (const amd_id& id : mModel->GetSubjects()) {
        if (mModel->GetNamespace(id) == space)
            beside.push_back(id);
    }
    return ReplaceOne(wrong, subjectIndex, NamesOf(beside));
}

std::vector<std::string> ConditionCheck::SuggestParents(const QualifiedName& names) const
{
    std::vector<std::string> complete;
    const QualifiedName subject(names.begin(), names.size() < 2 ? names.end() : names.end() - 1);
    for (const amd_id& id : mModel->FindByName(ENameKind::Subject, subject)) {
        QualifiedName name = mModel->GetQualifiedName(id);
        if (names.size() > 1)
            name.push_back(names.back());
        complete.push_back(model::ToReferenceText(name));
    }
    return complete;
}

std::vector<std::string_view> ConditionCheck::NamesOf(std::span<const amd_id> ids) const
{
    std::vector<std::string_view> names;
    for (const amd_id& id : ids)
        names.emplace_back(mModel->Find(id)->name);
    return names;
}

} // namespace qe::tool
