#include "Bindings/C/Boundary.h"
#include "Bindings/C/CallOptions.h"
#include "Bindings/C/OpenedModel.h"
#include "Toolkit/Answers/CheckOutput.h"
#include "Toolkit/Answers/ReportOutput.h"
#include "Toolkit/Answers/RequestOutput.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Ask/Reports.h"
#include "Toolkit/Batch/Batch.h"
#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/Check/Baseline.h"
#include "Toolkit/Check/CheckReport.h"
#include "Toolkit/Draw/DotWriter.h"
#include "Toolkit/Draw/PictureFormat.h"
#include "Toolkit/Draw/Pictures.h"
#include "Toolkit/Evaluate/Evaluation.h"
#include "Toolkit/Evaluate/ModelSource.h"
#include "Toolkit/History/JoinHistory.h"
#include "Toolkit/History/LoadHistory.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/JsonText.h"
#include "Toolkit/Text/TextStream.h"
#include "qerefine.h"

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

namespace qe::binding {

namespace {

using namespace qe::tool;

/// Returns JSON as the tool prints it.
std::string ToPrinted(const nlohmann::ordered_json& json)
{
    return ToJsonText(json) + '\n';
}

/// Does the work of a call about a model, which returns the text that the caller gets.
template <typename Work>
qe_status MakeText(const qe_model* model, char** text, qe_error** error, const Work& work) noexcept
{
    return Cross(error, Stage(QE_WRONG_USE), [&](Stage& stage) {
        PrepareResult(text, "text");
        RequirePointer(model, "model");
        const std::string made = work(*model->opened, stage);
        *text = ToCallersText(made);
    });
}

std::string CheckToText(const OpenedModel& model, const char* json, Stage& stage)
{
    CheckCallOptions options = ReadCheckOptions(json);
    stage.Enter(QE_UNREADABLE);
    if (!options.baseline.empty())
        options.check.baseline = ReadBaseline(options.baseline);
    options.check.history = model.GetHistory();
    const CheckReport report = CheckModel(model.GetDeclared(), options.check);
    return ToPrinted(ToJson(report, ToShownPath(model.GetPath()), options.view));
}

FactReport FindFacts(const OpenedModel& model, const char* request)
{
    if (request == nullptr)
        return tool::FindFacts(ReadJoins(model.GetAsked()));
    const Question question = ReadQuestion(ParseRequest(request), model.GetDefaults());
    const Answer answer = model.Ask(question);
    if (answer.error)
        throw Refusal(answer.error->text);
    return FindPathFacts(answer);
}

std::string ShortcutsToText(const OpenedModel& model, const char* request)
{
    const Question question = request == nullptr ? model.GetDefaults() : ReadDefaults(request);
    return ToPrinted(ToJson(FindShortcuts(model.GetAsked(), question), *model.GetAsked().model));
}

std::string DrawToText(const OpenedModel& model, const char* json, Stage& stage)
{
    const DrawOptions options = ReadDrawOptions(json);
    NameResolver names(*model.GetAsked().model);
    const std::vector<amd_id> around = names.ResolveSubjects("options#/around", options.around);
    names.ThrowProblems();
    stage.Enter(QE_NO_SUCH_FORM);
    const Picture picture = DrawModel(model.GetAsked(), around, options.limit);
    return options.form == DrawOptions::EForm::Dot
               ? WriteDot(picture)
               : MakeSvg(picture, {.signals = EEndingSignals::LeftToHost});
}

std::string BatchToLines(const OpenedModel& model, std::string_view requests, const char* json)
{
    const BatchCallOptions options = ReadBatchOptions(json, model.GetDefaults());
    std::istringstream input{std::string(requests)};
    TextStream lines;
    const BatchOutput output{.stream = lines, .toLine = [&options](const BatchEntry& entry) {
                                 return ToJsonLine(ToJson(entry, options.alternatives));
                             }};
    static_cast<void>(RunBatch(model.GetAsked(), input, output,
                               {.threads = options.jobs, .defaults = options.defaults}));
    return std::move(lines).str();
}

/// Returns the model as an evaluation asks it.
ToolModel ChooseEvaluated(const OpenedModel& model, const EvaluateOptions& options)
{
    // The requests themselves are the history.
    if (options.round != EHistoryRound::None)
        return model.GetDeclared();
    if (!options.histories)
        return model.GetAsked();
    if (options.histories->empty())
        return model.GetDeclared();
    return WithHistory(model.GetDeclared(),
                       LoadHistory(*model.GetDeclared().model, *options.histories).history);
}

std::string EvaluateToText(const OpenedModel& model, std::string_view requests, const char* json,
                           Stage& stage)
{
    const EvaluateOptions options = ReadEvaluateOptions(json, model.GetDefaults());
    stage.Enter(QE_UNREADABLE);
    ModelSource models(ChooseEvaluated(model, options));
    std::istringstream input{std::string(requests)};
    return ToPrinted(ToJson(Evaluate(models, input, options.defaults, options.round)));
}

} // namespace
} // namespace qe::binding

using namespace qe::binding;

qe_status qe_model_open(const char* path, const char* options, qe_model** model, qe_error** error)
{
    return Cross(error, Stage(QE_UNREADABLE), [&](Stage& /*stage*/) {
        PrepareResult(model, "model");
        RequirePointer(path, "path");
        *model = new qe_model{OpenPath(path, ReadOpenOptions(options))};
    });
}

qe_status qe_model_read(const void* bytes, size_t size, const char* name, const char* options,
                        qe_model** model, qe_error** error)
{
    return Cross(error, Stage(QE_UNREADABLE), [&](Stage& /*stage*/) {
        PrepareResult(model, "model");
        RequirePointer(bytes, "bytes");
        RequirePointer(name, "name");
        const std::string_view text(static_cast<const char*>(bytes), size);
        *model = new qe_model{OpenBytes(text, name, ReadOpenOptions(options))};
    });
}

void qe_model_free(qe_model* model)
{
    delete model;
}

qe_status qe_model_describe(const qe_model* model, char** json, qe_error** error)
{
    return MakeText(model, json, error, [](const OpenedModel& opened, Stage& /*stage*/) {
        return qe::tool::WriteModelText(opened.GetDeclared());
    });
}

qe_status qe_model_notes(const qe_model* model, char** json, qe_error** error)
{
    return MakeText(model, json, error, [](const OpenedModel& opened, Stage& /*stage*/) {
        return ToPrinted(opened.GetNotes());
    });
}

qe_status qe_model_check(const qe_model* model, const char* options, char** json, qe_error** error)
{
    return MakeText(model, json, error, [&](const OpenedModel& opened, Stage& stage) {
        return CheckToText(opened, options, stage);
    });
}

qe_status qe_model_facts(const qe_model* model, const char* request, char** json, qe_error** error)
{
    return MakeText(model, json, error, [&](const OpenedModel& opened, Stage& stage) {
        stage.Enter(QE_WRONG_REQUEST);
        return ToPrinted(ToJson(FindFacts(opened, request), *opened.GetAsked().model));
    });
}

qe_status qe_model_shortcuts(const qe_model* model, const char* request, char** json,
                             qe_error** error)
{
    return MakeText(model, json, error, [&](const OpenedModel& opened, Stage& stage) {
        stage.Enter(QE_WRONG_REQUEST);
        return ShortcutsToText(opened, request);
    });
}

qe_status qe_model_draw(const qe_model* model, const char* options, char** text, qe_error** error)
{
    return MakeText(model, text, error, [&](const OpenedModel& opened, Stage& stage) {
        return DrawToText(opened, options, stage);
    });
}

qe_status qe_model_batch(const qe_model* model, const char* requests, size_t size,
                         const char* options, char** lines, qe_error** error)
{
    return MakeText(model, lines, error, [&](const OpenedModel& opened, Stage& /*stage*/) {
        RequirePointer(requests, "requests");
        return BatchToLines(opened, {requests, size}, options);
    });
}

qe_status qe_model_evaluate(const qe_model* model, const char* requests, size_t size,
                            const char* options, char** json, qe_error** error)
{
    return MakeText(model, json, error, [&](const OpenedModel& opened, Stage& stage) {
        RequirePointer(requests, "requests");
        return EvaluateToText(opened, {requests, size}, options, stage);
    });
}
