#include "Toolkit/Ask/SubjectName.h"

#include "Engine/Model/Model.h"

namespace qe::tool {

std::string SubjectName(const model::Model& model, const amd_id& subject)
{
    const model::ObjectRecord* const record = model.Find(subject);
    if (record == nullptr)
        return ToText(subject);
    const bool isUnique =
        model.FindByName(model::ENameKind::Subject, model::QualifiedName{record->name}).size() == 1;
    return isUnique ? record->name : model::ToText(model.GetQualifiedName(subject));
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
