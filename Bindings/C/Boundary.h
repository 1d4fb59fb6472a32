#ifndef BINDINGS_C_BOUNDARY_H
#define BINDINGS_C_BOUNDARY_H

#include "Toolkit/Text/InputFile.h"
#include "qerefine.h"

#include <string>
#include <string_view>
#include <utility>

namespace qe::binding {

/// Mistakes in the call itself, such as in its options.
class WrongUse : public tool::InputError
{
public:
    explicit WrongUse(const tool::InputError& mistakes) : InputError(mistakes) {}
};

/// What the refiner refuses, in one sentence.
class Refusal : public tool::InputError
{
public:
    explicit Refusal(const std::string& text) : InputError({{"", text}}) {}
};

/// What a call is at, for the mistakes that end it there.
class Stage
{
public:
    explicit Stage(qe_status failure) : mFailure(failure) {}

    /// Mistakes that come from now on end the call with this status.
    void Enter(qe_status failure) { mFailure = failure; }
    [[nodiscard]] qe_status GetFailure() const { return mFailure; }

private:
    qe_status mFailure;
};

/// Returns the status for what was just thrown, at a stage of this failure, and sets the error, if
/// there is one to be set. Never throws: where memory is out, the error is one that takes none.
[[nodiscard]] qe_status TellFailure(qe_status failure, qe_error** error) noexcept;

/// Does the work of a call, and lets nothing out that it throws. Mistakes in input end it with the
/// failure of the stage that it is at, but for those that have a status of their own.
template <typename Work>
[[nodiscard]] qe_status Cross(qe_error** error, Stage stage, const Work& work) noexcept
{
    if (error != nullptr)
        *error = nullptr;
    try {
        work(stage);
        return QE_OK;
    } catch (...) {
        return TellFailure(stage.GetFailure(), error);
    }
}

/// Throws WrongUse for a null pointer, which is told by the name of the parameter.
void RequirePointer(const void* pointer, const char* parameter);

/// Empties the place for a result; a call without one is wrong.
template <typename Result>
void PrepareResult(Result** place, const char* parameter)
{
    RequirePointer(place, parameter);
    *place = nullptr;
}

/// Returns a copy for the caller, who frees it with qe_text_free.
[[nodiscard]] char* ToCallersText(std::string_view text);

} // namespace qe::binding

#endif
