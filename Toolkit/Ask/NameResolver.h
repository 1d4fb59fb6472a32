#ifndef TOOLKIT_ASK_NAMERESOLVER_H
#define TOOLKIT_ASK_NAMERESOLVER_H

#include "Toolkit/Text/InputFile.h"
#include "amd_id.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::model {
class Model;
}

namespace qe::tool {

/// Turns names as people write them into ids, and gathers what is wrong with them.
///
/// An object is named by its name, with any of its parents before it ("Sales.Orders"), or by its
/// id ("100:7"). Letter case counts only where it tells two objects apart. A join is also named by
/// its two ends ("Orders-Customer").
class NameResolver
{
public:
    /// Refers to the model.
    explicit NameResolver(const model::Model& model) : mModel(model) {}

    /// Returns the subjects of those names, each once, in their order. Names that are wrong or
    /// ambiguous are left out and recorded under `place`.
    [[nodiscard]] std::vector<amd_id> ResolveSubjects(const std::string& place,
                                                      const std::vector<std::string>& names);
    /// Does so for joins.
    [[nodiscard]] std::vector<amd_id> ResolveJoins(const std::string& place,
                                                   const std::vector<std::string>& names);

    void AddProblem(InputProblem problem) { mProblems.push_back(std::move(problem)); }
    /// Throws InputError when anything was wrong so far.
    void ThrowProblems() const;

private:
    enum class EKind
    {
        Subject,
        Join,
    };

    [[nodiscard]] std::vector<amd_id> Resolve(EKind kind, const std::string& place,
                                              const std::vector<std::string>& names);
    [[nodiscard]] std::vector<amd_id> FindAll(EKind kind, const std::string& name) const;
    [[nodiscard]] std::vector<amd_id> FindByEnds(const std::string& name) const;
    [[nodiscard]] std::vector<amd_id> FindById(EKind kind, std::string_view text) const;
    [[nodiscard]] InputProblem DescribeUnknown(EKind kind, const std::string& place,
                                               const std::string& name) const;
    [[nodiscard]] InputProblem DescribeAmbiguous(EKind kind, const std::string& place,
                                                 const std::string& name,
                                                 const std::vector<amd_id>& found) const;

    const model::Model& mModel;
    std::vector<InputProblem> mProblems;
};

/// Returns the name of a subject of the model, with its parents when others have the same name: a
/// name that a NameResolver resolves to this subject. The id's text for what the model does not
/// have.
[[nodiscard]] std::string SubjectName(const model::Model& model, const amd_id& subject);

/// Returns a name of a join of the model that a NameResolver resolves to this join alone: its own,
/// its own behind its parents', or else the id's text.
[[nodiscard]] std::string JoinName(const model::Model& model, const amd_id& join);

/// Returns such a name for each subject.
[[nodiscard]] std::vector<std::string> SubjectNames(const model::Model& model,
                                                    const std::vector<amd_id>& subjects);

} // namespace qe::tool

#endif
