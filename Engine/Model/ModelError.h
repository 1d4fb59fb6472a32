#ifndef ENGINE_MODEL_MODELERROR_H
#define ENGINE_MODEL_MODELERROR_H

#include "QEENGINE_EXPORT.h"
#include "amd_id.h"

#include <cstdint>
#include <exception>
#include <string>
#include <vector>

namespace qe::model {

/// What of an object a problem is about, so that a reader of model files can point at the place.
enum class EAspect
{
    Object,
    Id,
    Name,
    Parent,
    Target,
    LeftEnd,
    RightEnd,
    LeftCardinality,
    RightCardinality,
};

/// One thing that keeps a model from being built.
struct ModelProblem
{
    /// Position of the object among all added ones, from zero: the order of the Add calls.
    std::size_t object = 0;
    /// What the caller gave with the object to find it again; see ObjectOptions::tag.
    std::int64_t tag = 0;
    amd_id id;
    EAspect aspect = EAspect::Object;
    /// One sentence that names the object.
    std::string text;
    /// Where a name was wrong: the names that come nearest, best first.
    std::vector<std::string> nearestNames;
};

/// Everything that is wrong with a model, in the order in which the objects were added.
class QEENGINE_EXPORT ModelError : public std::exception
{
public:
    explicit ModelError(std::vector<ModelProblem> problems);

    [[nodiscard]] const std::vector<ModelProblem>& GetProblems() const noexcept
    {
        return mProblems;
    }

    /// Returns one line for each problem, with the nearest names.
    [[nodiscard]] const char* what() const noexcept override { return mText.c_str(); }

private:
    std::vector<ModelProblem> mProblems;
    std::string mText;
};

} // namespace qe::model

#endif
