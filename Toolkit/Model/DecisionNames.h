#ifndef TOOLKIT_MODEL_DECISIONNAMES_H
#define TOOLKIT_MODEL_DECISIONNAMES_H

#include "Toolkit/Model/ContentReader.h"
#include "Toolkit/Model/Decision.h"
#include "Toolkit/Text/JsonProblems.h"

#include <nlohmann/json_fwd.hpp>
#include <set>
#include <string>
#include <vector>

namespace qe::model {
class Model;
}

namespace qe::tool {

/// Looks up what the decisions of a model file name. Refers to all its arguments.
class DecisionReader
{
public:
    /// Names that may stand for one of the doubtful names are passed over.
    DecisionReader(const model::Model& model, const std::set<std::string>& doubtfulNames,
                   JsonProblems& problems)
        : mModel(&model), mDoubtfulNames(&doubtfulNames), mProblems(&problems)
    {}

    /// Returns the decisions. Reports names that are wrong, joins that are both preferred and
    /// avoided, and subjects that are decided on twice.
    [[nodiscard]] std::vector<Decision> Resolve(const std::vector<ContentDecision>& described);

private:
    enum class EKind
    {
        Subject,
        Join,
    };

    [[nodiscard]] std::vector<amd_id> ResolveAll(EKind kind,
                                                 const std::vector<PlacedReference>& references);
    [[nodiscard]] std::vector<amd_id> FindAll(EKind kind, const model::Reference& reference) const;
    void ReportWrong(EKind kind, const PlacedReference& reference,
                     const std::vector<amd_id>& found);
    void ReportContradictions(const ContentDecision& described);
    [[nodiscard]] bool IsDoubtful(const model::Reference& reference) const;

    const model::Model* mModel;
    const std::set<std::string>* mDoubtfulNames;
    JsonProblems* mProblems;
};

/// Returns the decisions as a model file describes them.
[[nodiscard]] nlohmann::ordered_json ToJson(const model::Model& model,
                                            const std::vector<Decision>& decisions);

/// Returns the accepted findings as a model file describes them.
[[nodiscard]] nlohmann::ordered_json ToJson(const std::vector<AcceptedFinding>& findings);

} // namespace qe::tool

#endif
