#include "Toolkit/Ask/NameResolver.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Text/TextEdges.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>

namespace qe::tool {

namespace {

using model::ENameKind;

std::optional<std::int32_t> ParseNumber(std::string_view text)
{
    std::int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, number);
    if (failure != std::errc() || stop != end)
        return std::nullopt;
    return number;
}

} // namespace

std::vector<amd_id> NameResolver::ResolveSubjects(const std::string& place,
                                                  const std::vector<std::string>& names)
{
    return Resolve(EKind::Subject, place, names);
}

std::vector<amd_id> NameResolver::ResolveJoins(const std::string& place,
                                               const std::vector<std::string>& names)
{
    return Resolve(EKind::Join, place, names);
}

void NameResolver::ThrowProblems() const
{
    if (!mProblems.empty())
        throw InputError(mProblems);
}

std::vector<amd_id> NameResolver::Resolve(EKind kind, const std::string& place,
                                          const std::vector<std::string>& names)
{
    std::vector<amd_id> ids;
    std::set<amd_id> known;
    for (const std::string& name : names) {
        const std::vector<amd_id> found = FindAll(kind, name);
        if (found.empty())
            AddProblem(DescribeUnknown(kind, place, name));
        else if (found.size() > 1)
            AddProblem(DescribeAmbiguous(kind, place, name, found));
        else if (known.insert(found.front()).second)
            ids.push_back(found.front());
    }
    return ids;
}

std::vector<amd_id> NameResolver::FindAll(EKind kind, const std::string& name) const
{
    std::vector<amd_id> found =
        mModel.FindByName(kind == EKind::Join ? ENameKind::Join : ENameKind::Subject, name);
    if (found.empty() && kind == EKind::Join)
        found = FindByEnds(name);
    return found.empty() ? FindById(kind, name) : found;
}

std::vector<amd_id> NameResolver::FindByEnds(const std::string& name) const
{
    std::set<amd_id> found;
    // Names may hold hyphens themselves, so each of them is tried as the one between the ends.
    for (std::size_t hyphen = name.find('-'); hyphen != std::string::npos;
         hyphen = name.find('-', hyphen + 1)) {
        const std::string_view text(name);
        const auto left =
            mModel.FindByName(ENameKind::Subject, std::string(Trim(text.substr(0, hyphen))));
        const auto right =
            mModel.FindByName(ENameKind::Subject, std::string(Trim(text.substr(hyphen + 1))));
        if (left.size() != 1 || right.size() != 1)
            continue;
        for (const amd_id& join : mModel.GetJoins()) {
            const model::ObjectRecord* const record = mModel.Find(join);
            const bool matches = (record->left == left.front() && record->right == right.front()) ||
                                 (record->left == right.front() && record->right == left.front());
            if (matches)
                found.insert(join);
        }
    }
    return {found.begin(), found.end()};
}

std::vector<amd_id> NameResolver::FindById(EKind kind, std::string_view text) const
{
    std::vector<amd_id> found;
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos)
        return found;
    const auto classCode = ParseNumber(text.substr(0, colon));
    const auto number = ParseNumber(text.substr(colon + 1));
    if (!classCode || !number)
        return found;
    const bool fits =
        kind == EKind::Join ? model::IsJoinClass(*classCode) : model::IsSubjectClass(*classCode);
    if (!fits)
        return found;
    for (const amd_id& id : mModel.GetIds(*classCode)) {
        if (id.number == *number)
            found.push_back(id);
    }
    return found;
}

InputProblem NameResolver::DescribeUnknown(EKind kind, const std::string& place,
                                           const std::string& name) const
{
    if (kind == EKind::Join)
        return {place, "The model has no join \"" + name + '"',
                mModel.SuggestNames(ENameKind::Join, name), EMistake::UnknownName};
    const std::vector<amd_id> items = mModel.FindByName(ENameKind::Item, name);
    if (items.size() == 1)
        return {place,
                "A column is no query subject: \"" + name + '"',
                {SubjectName(mModel, mModel.Find(items.front())->parent)},
                EMistake::UnknownName};
    return {place, "The model has no query subject or shortcut \"" + name + '"',
            mModel.SuggestNames(ENameKind::Subject, name), EMistake::UnknownName};
}

InputProblem NameResolver::DescribeAmbiguous(EKind kind, const std::string& place,
                                             const std::string& name,
                                             const std::vector<amd_id>& found) const
{
    constexpr std::size_t kShown = 10;
    InputProblem problem{.place = place,
                         .text = "The name stands for " + std::to_string(found.size()) +
                                 (kind == EKind::Join ? " joins" : " subjects") + ": \"" + name +
                                 '"',
                         .mistake = EMistake::AmbiguousName};
    for (const amd_id& id : found) {
        const model::QualifiedName qualified = mModel.GetQualifiedName(id);
        const auto nameKind = kind == EKind::Join ? ENameKind::Join : ENameKind::Subject;
        // Several joins may share even their qualified name.
        const bool isUnique = mModel.FindByName(nameKind, qualified).size() == 1;
        problem.nearestNames.push_back(isUnique ? model::ToText(qualified) : ToText(id));
        if (problem.nearestNames.size() == kShown)
            break;
    }
    return problem;
}

std::string SubjectName(const model::Model& model, const amd_id& subject)
{
    const model::ObjectRecord* const record = model.Find(subject);
    if (record == nullptr)
        return ToText(subject);
    // A name without parents may lead to another subject, which is in no namespace.
    const auto found = model.FindByName(ENameKind::Subject, model::QualifiedName{record->name});
    const bool isEnough = found == std::vector{subject};
    return isEnough ? record->name : model::ToText(model.GetQualifiedName(subject));
}

std::string JoinName(const model::Model& model, const amd_id& join)
{
    const model::ObjectRecord* const record = model.Find(join);
    if (record == nullptr)
        return ToText(join);
    for (std::string name : {record->name, model::ToText(model.GetQualifiedName(join))}) {
        if (!name.empty() && model.FindByName(ENameKind::Join, name) == std::vector{join})
            return name;
    }
    return ToText(join);
}

std::vector<std::string> SubjectNames(const model::Model& model,
                                      const std::vector<amd_id>& subjects)
{
    std::vector<std::string> names;
    names.reserve(subjects.size());
    for (const amd_id& subject : subjects)
        names.push_back(SubjectName(model, subject));
    return names;
}

} // namespace qe::tool
