#ifndef TOOLKIT_MODEL_CONDITIONCHECK_H
#define TOOLKIT_MODEL_CONDITIONCHECK_H

#include "Engine/Expression/ParseReport.h"
#include "Engine/Model/Model.h"
#include "Engine/Model/ModelGateway.h"
#include "Toolkit/Model/ContentReader.h"
#include "Toolkit/Text/JsonProblems.h"

#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace qe::tool {

/// Checks that conditions can be read and that a model has what they name. Refers to `problems`
/// and `doubtfulNames`.
class ConditionCheck
{
public:
    /// Without a model (null) names are not checked, nor are references in which one of the
    /// doubtful names stands.
    ConditionCheck(std::shared_ptr<const model::Model> model,
                   const std::set<std::string>& doubtfulNames, JsonProblems& problems);

    /// Reports what is wrong with the object's condition, if it has one.
    void Check(const ContentObject& object);

private:
    using Names = std::vector<I18NString>;

    void CheckReference(const expression::NamedReference& reference, const std::string& pointer);
    [[nodiscard]] bool IsDoubtful(const Names& names) const;
    /// Returns what the names were probably meant to be, as expressions write it.
    [[nodiscard]] std::vector<std::string> Suggest(const Names& names) const;
    /// Returns the names completed by those of the parents that such subjects have.
    [[nodiscard]] std::vector<std::string> SuggestParents(const model::QualifiedName& names) const;
    [[nodiscard]] std::vector<std::string_view> NamesOf(std::span<const amd_id> ids) const;

    std::shared_ptr<const model::Model> mModel;
    const std::set<std::string>* mDoubtfulNames;
    JsonProblems* mProblems;
    /// Null without a model.
    std::unique_ptr<model::ModelGateway> mGateway;
    std::size_t mSuggestions = 0;
};

} // namespace qe::tool

#endif
