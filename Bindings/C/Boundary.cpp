#include "Bindings/C/Boundary.h"

#include "Toolkit/Import/Schema/ServerOptions.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <memory>
#include <new>
#include <vector>

using qe::tool::EMistake;
using qe::tool::InputError;
using qe::tool::InputProblem;

struct qe_error
{
    qe_status status;
    std::string text;
    std::vector<InputProblem> mistakes;
};

namespace qe::binding {

namespace {

/// Is there before memory runs out; its texts are short enough to need none.
const qe_error kOutOfMemory{.status = QE_OUT_OF_MEMORY, .text = "out of memory", .mistakes = {}};

qe_status StatusOf(const InputError& error, qe_status failure)
{
    const auto& mistakes = error.GetProblems();
    const auto holds = [&mistakes](EMistake mistake) {
        return std::any_of(mistakes.begin(), mistakes.end(),
                           [mistake](const InputProblem& p) { return p.mistake == mistake; });
    };
    if (holds(EMistake::UnknownName))
        return QE_UNKNOWN_NAME;
    return holds(EMistake::AmbiguousName) ? QE_AMBIGUOUS_NAME : failure;
}

std::unique_ptr<qe_error> MakeError(qe_status status, const InputError& error)
{
    return std::make_unique<qe_error>(
        qe_error{.status = status, .text = error.what(), .mistakes = error.GetProblems()});
}

std::unique_ptr<qe_error> MakeInternalError(const char* text)
{
    return MakeError(QE_INTERNAL_ERROR, InputError({{"", std::string("internal error: ") + text}}));
}

/// Returns the error for what is being handled.
std::unique_ptr<qe_error> MakeError(qe_status failure)
{
    try {
        throw;
    } catch (const Refusal& refusal) {
        return MakeError(QE_REFUSED, refusal);
    } catch (const WrongUse& mistakes) {
        return MakeError(StatusOf(mistakes, QE_WRONG_USE), mistakes);
    } catch (const tool::PatternError& mistakes) {
        return MakeError(QE_WRONG_USE, mistakes);
    } catch (const InputError& mistakes) {
        return MakeError(StatusOf(mistakes, failure), mistakes);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        return MakeInternalError(error.what());
    } catch (...) {
        return MakeInternalError("it has no text");
    }
}

} // namespace

qe_status TellFailure(qe_status failure, qe_error** error) noexcept
{
    try {
        std::unique_ptr<qe_error> made = MakeError(failure);
        const qe_status status = made->status;
        if (error != nullptr)
            *error = made.release();
        return status;
    } catch (...) {
        // Callers only read it, and freeing it does nothing.
        if (error != nullptr)
            *error = const_cast<qe_error*>(&kOutOfMemory);
        return QE_OUT_OF_MEMORY;
    }
}

void RequirePointer(const void* pointer, const char* parameter)
{
    if (pointer == nullptr)
        throw WrongUse(InputError({InputProblem{parameter, "must not be NULL"}}));
}

char* ToCallersText(std::string_view text)
{
    auto copy = std::make_unique<char[]>(text.size() + 1);
    std::copy(text.begin(), text.end(), copy.get());
    return copy.release();
}

namespace {

const InputProblem* FindMistake(const qe_error* error, std::size_t mistake)
{
    return error != nullptr && mistake < error->mistakes.size() ? &error->mistakes[mistake]
                                                                : nullptr;
}

} // namespace
} // namespace qe::binding

qe_status qe_error_status(const qe_error* error)
{
    return error == nullptr ? QE_OK : error->status;
}

const char* qe_error_text(const qe_error* error)
{
    return error == nullptr ? "" : error->text.c_str();
}

size_t qe_error_count(const qe_error* error)
{
    return error == nullptr ? 0 : error->mistakes.size();
}

const char* qe_error_place(const qe_error* error, size_t mistake)
{
    const InputProblem* const found = qe::binding::FindMistake(error, mistake);
    return found == nullptr ? nullptr : found->place.c_str();
}

const char* qe_error_message(const qe_error* error, size_t mistake)
{
    const InputProblem* const found = qe::binding::FindMistake(error, mistake);
    return found == nullptr ? nullptr : found->text.c_str();
}

const char* qe_error_suggestion(const qe_error* error, size_t mistake, size_t n)
{
    const InputProblem* const found = qe::binding::FindMistake(error, mistake);
    return found == nullptr || n >= found->nearestNames.size() ? nullptr
                                                               : found->nearestNames[n].c_str();
}

void qe_error_free(qe_error* error)
{
    if (error != &qe::binding::kOutOfMemory)
        delete error;
}

void qe_text_free(char* text)
{
    delete[] text;
}
