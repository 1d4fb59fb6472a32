#include "Engine/Model/ReferenceFinder.h"

#include <algorithm>
#include <string>

namespace qe::model {

namespace {

/// Suggestions read all names: a model full of wrong names gets them for the first ones only.
constexpr int kMaximumSuggestions = 100;

std::string AspectTitle(EAspect aspect)
{
    switch (aspect) {
    case EAspect::Parent:
        return "parent";
    case EAspect::LeftEnd:
        return "left end";
    case EAspect::RightEnd:
        return "right end";
    default:
        return "target";
    }
}

} // namespace

amd_id ReferenceFinder::Find(std::size_t position, const PlacedDraft& draft,
                             const Reference& reference, const Wanted& wanted)
{
    if (!reference.IsByName() && !reference.IsEmpty() && mTable->Find(reference.GetId()) != nullptr)
        return reference.GetId();
    const std::string title = AspectTitle(wanted.aspect);
    if (reference.IsEmpty()) {
        if (wanted.aspect != EAspect::Parent)
            mProblems->Add(position, wanted.aspect, "has no " + title);
        return {};
    }
    if (!reference.IsByName()) {
        mProblems->Add(position, wanted.aspect,
                       "has a " + title +
                           " that is not in the model: " + ToText(reference.GetId()));
        return {};
    }
    const std::vector<amd_id> found = Match(draft, reference.GetName(), wanted.nameKinds);
    if (found.size() == 1)
        return found.front();
    if (found.empty() && NamesItself(draft, reference.GetName(), wanted.nameKinds)) {
        mProblems->Add(position, wanted.aspect,
                       "has itself as its " + title + ": \"" + reference.GetName() + '"');
        return {};
    }
    if (found.empty()) {
        mProblems->Add(position, wanted.aspect,
                       "has a " + title + " that is not in the model: \"" + reference.GetName() +
                           '"',
                       Suggest(reference.GetName(), wanted.nameKinds));
        return {};
    }
    std::vector<std::string> names;
    names.reserve(found.size());
    for (const amd_id& id : found)
        names.push_back(ToText(GetNames().GetQualifiedName(id)));
    mProblems->Add(position, wanted.aspect,
                   "has a " + title + " that can mean several objects: \"" + reference.GetName() +
                       '"',
                   std::move(names));
    return {};
}

amd_id ReferenceFinder::TryFind(const PlacedDraft& draft, const Reference& reference,
                                const std::vector<ENameKind>& nameKinds)
{
    if (!reference.IsByName())
        return mTable->Find(reference.GetId()) != nullptr ? reference.GetId() : amd_id();
    const std::vector<amd_id> found = Match(draft, reference.GetName(), nameKinds);
    return found.size() == 1 ? found.front() : amd_id();
}

const NameLookup& ReferenceFinder::GetNames()
{
    if (!mNames)
        mNames.emplace(*mTable, mNameKinds);
    return *mNames;
}

std::vector<amd_id> ReferenceFinder::Match(const PlacedDraft& draft, const std::string& name,
                                           const std::vector<ENameKind>& nameKinds)
{
    std::vector<amd_id> found;
    const auto match = [&](ENameKind nameKind, const QualifiedName& parts) {
        found = GetNames().Match(nameKind, parts);
        // A shortcut often has the name of what it stands for.
        found.erase(std::remove(found.begin(), found.end(), draft.record->id), found.end());
    };
    const QualifiedName parts = ParseQualifiedName(name);
    for (std::size_t i = 0; i < nameKinds.size() && found.empty(); ++i) {
        match(nameKinds[i], parts);
        if (found.empty())
            match(nameKinds[i], QualifiedName{name});
    }
    if (found.size() < 2)
        return found;
    std::vector<amd_id> nearby;
    std::copy_if(found.begin(), found.end(), std::back_inserter(nearby),
                 [&](const amd_id& id) { return mTable->Find(id)->space == draft.record->space; });
    return nearby.size() == 1 ? nearby : found;
}

bool ReferenceFinder::NamesItself(const PlacedDraft& draft, const std::string& name,
                                  const std::vector<ENameKind>& nameKinds)
{
    return std::any_of(nameKinds.begin(), nameKinds.end(), [&](ENameKind nameKind) {
        const std::vector<amd_id> found = GetNames().Match(nameKind, ParseQualifiedName(name));
        return std::find(found.begin(), found.end(), draft.record->id) != found.end();
    });
}

std::vector<std::string> ReferenceFinder::Suggest(const std::string& name,
                                                  const std::vector<ENameKind>& nameKinds)
{
    std::vector<std::string> names;
    if (++mSuggestions > kMaximumSuggestions)
        return names;
    for (std::size_t i = 0; i < nameKinds.size() && names.empty(); ++i)
        names = GetNames().Suggest(nameKinds[i], ParseQualifiedName(name));
    return names;
}

} // namespace qe::model
