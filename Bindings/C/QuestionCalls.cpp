#include "Bindings/C/Boundary.h"
#include "Bindings/C/CallOptions.h"
#include "Bindings/C/OpenedModel.h"
#include "Toolkit/Ask/StartSubject.h"
#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/Format.h"
#include "Toolkit/Text/TextStream.h"
#include "qerefine.h"

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

struct qe_answer
{
    std::shared_ptr<const qe::binding::OpenedModel> opened;
    qe::tool::Question question;
    qe::tool::Answer answer;
};

namespace qe::binding {

namespace {

using namespace qe::tool;

/// The forms of answers that are texts.
constexpr std::array<std::string_view, 6> kForms{"json", "text", "sql", "dot", "svg", "html"};

const Format& FindForm(std::string_view name)
{
    for (const std::string_view form : kForms) {
        if (form == name)
            return *FindFormat(form);
    }
    throw WrongUse(InputError({{"format", "unknown form: \"" + std::string(name) +
                                              "\"; it may be " + JoinTexts(kForms)}}));
}

std::string WriteAnswer(const qe_answer& asked, const Format& form, const char* json)
{
    WriteOptions options = ReadWriteOptions(json);
    RequireForm(asked.question, form);
    const ToolModel& model = asked.opened->GetAsked();
    if (!options.start.empty())
        options.format.sql.start =
            FindStart(*model.model, asked.answer, "options#/start", options.start);
    if (model.isModelFile)
        options.format.modelFile = asked.opened->GetPath().string();
    // A failed request has no path, so there is nothing to join.
    if (asked.answer.error && form.name == "sql")
        throw InputError({{"", asked.answer.error->text}});
    TextStream text;
    form.write(text, {.model = model,
                      .question = asked.question,
                      .answer = asked.answer,
                      .options = options.format});
    return std::move(text).str();
}

} // namespace
} // namespace qe::binding

using namespace qe::binding;

qe_status qe_ask(const qe_model* model, const char* request, qe_answer** answer, qe_error** error)
{
    return Cross(error, Stage(QE_WRONG_REQUEST), [&](Stage& /*stage*/) {
        PrepareResult(answer, "answer");
        RequirePointer(model, "model");
        RequirePointer(request, "request");
        qe::tool::Question question =
            qe::tool::ReadQuestion(qe::tool::ParseRequest(request), model->opened->GetDefaults());
        qe::tool::Answer given = model->opened->Ask(question);
        *answer = new qe_answer{model->opened, std::move(question), std::move(given)};
    });
}

qe_outcome qe_answer_outcome(const qe_answer* answer)
{
    if (answer == nullptr)
        return QE_ANSWER_FAILED;
    const qe::tool::Answer& given = answer->answer;
    if (!given.error)
        return given.connected ? QE_CONNECTED : QE_NOT_CONNECTED;
    return given.error->kind == qe::tool::AnswerError::EKind::Reported ? QE_ANSWER_REFUSED
                                                                       : QE_ANSWER_FAILED;
}

qe_status qe_answer_write(const qe_answer* answer, const char* format, const char* options,
                          char** text, qe_error** error)
{
    return Cross(error, Stage(QE_NO_SUCH_FORM), [&](Stage& /*stage*/) {
        PrepareResult(text, "text");
        RequirePointer(answer, "answer");
        RequirePointer(format, "format");
        *text = ToCallersText(WriteAnswer(*answer, FindForm(format), options));
    });
}

void qe_answer_free(qe_answer* answer)
{
    delete answer;
}
