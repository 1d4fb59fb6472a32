#ifndef TESTS_BINDINGS_CCALLS_H
#define TESTS_BINDINGS_CCALLS_H

#include "qerefine.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace qe::test {

struct ModelCloser
{
    void operator()(qe_model* model) const { qe_model_free(model); }
};
struct AnswerCloser
{
    void operator()(qe_answer* answer) const { qe_answer_free(answer); }
};
using CModel = std::unique_ptr<qe_model, ModelCloser>;
using CAnswer = std::unique_ptr<qe_answer, AnswerCloser>;

/// What a call came to: its text, or else its error.
struct CallResult
{
    qe_status status = QE_OK;
    std::string text{};
    std::string error{};
    std::string place{};
    std::string suggestion{};
};

/// Makes a call that sets a text.
[[nodiscard]] inline CallResult Call(const std::function<qe_status(char**, qe_error**)>& call)
{
    char* text = nullptr;
    qe_error* error = nullptr;
    CallResult result{.status = call(&text, &error)};
    if (text != nullptr)
        result.text = text;
    qe_text_free(text);
    result.error = qe_error_text(error);
    const auto toText = [](const char* found) { return std::string(found ? found : ""); };
    result.place = toText(qe_error_place(error, 0));
    result.suggestion = toText(qe_error_suggestion(error, 0, 0));
    qe_error_free(error);
    return result;
}

/// Returns the model; null when it cannot be opened.
[[nodiscard]] inline CModel Open(const std::string& path, const char* options = nullptr)
{
    qe_model* model = nullptr;
    static_cast<void>(qe_model_open(path.c_str(), options, &model, nullptr));
    return CModel(model);
}

[[nodiscard]] inline CAnswer Ask(const CModel& model, const char* request)
{
    qe_answer* answer = nullptr;
    static_cast<void>(qe_ask(model.get(), request, &answer, nullptr));
    return CAnswer(answer);
}

[[nodiscard]] inline CallResult Write(const CAnswer& answer, const char* format,
                                      const char* options = nullptr)
{
    return Call([&](char** text, qe_error** error) {
        return qe_answer_write(answer.get(), format, options, text, error);
    });
}

} // namespace qe::test

#endif
