#include "Toolkit/Model/DecisionNames.h"

#include "Engine/Model/Model.h"
#include "Engine/Model/Names.h"
#include "Toolkit/Model/ModelWords.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <utility>

namespace qe::tool {

using model::ENameKind;
using nlohmann::ordered_json;

namespace {

using Ids = std::vector<amd_id>;

/// How many of several objects of one name are told.
constexpr std::size_t kShownMeanings = 10;

void SortOnce(Ids& ids)
{
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
}

ordered_json IdReference(const amd_id& id)
{
    ordered_json json{{keys::kClass, id.classCode}, {keys::kId, id.number}};
    if (id.domain != 0)
        json[keys::kId] = {id.domain, id.number};
    return json;
}

/// Returns the shortest reference that leads to the object from outside all namespaces.
ordered_json ToReference(const model::Model& model, const amd_id& id)
{
    const auto kind = model::IsJoinClass(id.classCode) ? ENameKind::Join : ENameKind::Subject;
    const model::QualifiedName qualified = model.GetQualifiedName(id);
    for (const model::QualifiedName& name :
         {model::QualifiedName{model.Find(id)->name}, qualified}) {
        const std::string text = model::ToText(name);
        const Ids found = model.FindByName(kind, text);
        if (found.size() == 1 && found.front() == id)
            return text;
    }
    return IdReference(id);
}

ordered_json ToReferences(const model::Model& model, const Ids& ids)
{
    ordered_json list = ordered_json::array();
    for (const amd_id& id : ids)
        list.push_back(ToReference(model, id));
    return list;
}

} // namespace

std::vector<Decision> DecisionReader::Resolve(const std::vector<ContentDecision>& described)
{
    std::vector<Decision> decisions;
    std::map<Ids, std::string> decided;
    for (const ContentDecision& each : described) {
        Decision decision{.subjects = ResolveAll(EKind::Subject, each.subjects),
                          .preferred = ResolveAll(EKind::Join, each.preferred),
                          .avoided = ResolveAll(EKind::Join, each.avoided),
                          .reason = each.reason};
        // Wrong names would make different sets of subjects equal.
        if (!mProblems->IsEmpty())
            continue;
        const auto [owner, isNew] = decided.emplace(decision.subjects, each.pointer);
        if (!isNew)
            mProblems->Add(each.pointer, "is about the same subjects as another: " + owner->second);
        ReportContradictions(each);
        decisions.push_back(std::move(decision));
    }
    return decisions;
}

std::vector<amd_id> DecisionReader::ResolveAll(EKind kind,
                                               const std::vector<PlacedReference>& references)
{
    Ids ids;
    for (const PlacedReference& each : references) {
        if (mProblems->IsReported(each.pointer) || IsDoubtful(each.reference))
            continue;
        const Ids found = FindAll(kind, each.reference);
        if (found.size() == 1)
            ids.push_back(found.front());
        else
            ReportWrong(kind, each, found);
    }
    SortOnce(ids);
    return ids;
}

std::vector<amd_id> DecisionReader::FindAll(EKind kind, const model::Reference& reference) const
{
    Ids found;
    if (reference.IsByName())
        found = mModel->FindByName(kind == EKind::Join ? ENameKind::Join : ENameKind::Subject,
                                   reference.GetName());
    else if (!reference.IsEmpty())
        found.push_back(reference.GetId());
    const auto known = kind == EKind::Join ? mModel->GetJoins() : mModel->GetSubjects();
    std::erase_if(found, [&known](const amd_id& id) {
        return !std::binary_search(known.begin(), known.end(), id);
    });
    return found;
}

void DecisionReader::ReportWrong(EKind kind, const PlacedReference& reference, const Ids& found)
{
    const bool isJoin = kind == EKind::Join;
    const model::Reference& named = reference.reference;
    const std::string name =
        named.IsByName() ? '"' + named.GetName() + '"' : ::ToText(named.GetId());
    if (!found.empty()) {
        std::vector<std::string> meanings;
        for (const amd_id& id : std::span(found).first(std::min(found.size(), kShownMeanings)))
            meanings.push_back(ToReference(*mModel, id).dump());
        mProblems->Add(reference.pointer,
                       "stands for " + std::to_string(found.size()) +
                           (isJoin ? " joins: " : " subjects: ") + name,
                       std::move(meanings));
        return;
    }
    const auto nameKind = isJoin ? ENameKind::Join : ENameKind::Subject;
    mProblems->Add(reference.pointer,
                   std::string("names a ") + (isJoin ? "join" : "query subject or shortcut") +
                       " that is not in the model: " + name,
                   named.IsByName() ? mModel->SuggestNames(nameKind, named.GetName())
                                    : std::vector<std::string>());
}

void DecisionReader::ReportContradictions(const ContentDecision& described)
{
    const Ids preferred = ResolveAll(EKind::Join, described.preferred);
    for (const PlacedReference& avoided : described.avoided) {
        const Ids found = FindAll(EKind::Join, avoided.reference);
        if (found.size() == 1 && std::count(preferred.begin(), preferred.end(), found.front()) > 0)
            mProblems->Add(avoided.pointer, "is both preferred and avoided: " +
                                                ToReference(*mModel, found.front()).dump());
    }
}

bool DecisionReader::IsDoubtful(const model::Reference& reference) const
{
    if (!reference.IsByName())
        return !mDoubtfulNames->empty();
    const model::QualifiedName names = model::ParseQualifiedName(reference.GetName());
    return mDoubtfulNames->count(reference.GetName()) != 0 ||
           (!names.empty() && mDoubtfulNames->count(names.back()) != 0);
}

ordered_json ToJson(const model::Model& model, const std::vector<Decision>& decisions)
{
    ordered_json list = ordered_json::array();
    for (const Decision& decision : decisions) {
        ordered_json json = ordered_json::object();
        if (!decision.subjects.empty())
            json[keys::kSubjects] = ToReferences(model, decision.subjects);
        if (!decision.preferred.empty())
            json[keys::kPrefer] = ToReferences(model, decision.preferred);
        if (!decision.avoided.empty())
            json[keys::kAvoid] = ToReferences(model, decision.avoided);
        if (!decision.reason.empty())
            json[keys::kReason] = decision.reason;
        list.push_back(std::move(json));
    }
    return list;
}

ordered_json ToJson(const std::vector<AcceptedFinding>& findings)
{
    ordered_json list = ordered_json::array();
    for (const AcceptedFinding& finding : findings)
        list.push_back({{keys::kId, finding.id}, {keys::kReason, finding.reason}});
    return list;
}

} // namespace qe::tool
