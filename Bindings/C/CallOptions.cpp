#include "Bindings/C/CallOptions.h"

#include "Bindings/C/Boundary.h"
#include "Toolkit/Ask/SettingNames.h"
#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/Check/Rules.h"
#include "Toolkit/Sql/SqlDialect.h"
#include "Toolkit/Text/JsonObject.h"
#include "Toolkit/Text/JsonProblems.h"
#include "Toolkit/Text/JsonText.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

namespace qe::binding {

namespace {

using namespace qe::tool;

const char* const kOptions = "options";
constexpr std::int32_t kLongestStatement = 86400;
constexpr std::int32_t kMostJobs = 256;
constexpr std::int32_t kMostPathJoins = 100;
constexpr NumberRange kCounts{.minimum = 0, .maximum = std::numeric_limits<std::int32_t>::max()};

/// Reads an object of options with `read`, which asks for each of its keys.
template <typename Options, typename Read>
Options ReadObject(const char* text, Options options, const Read& read)
{
    if (text == nullptr)
        return options;
    try {
        JsonProblems problems(kOptions);
        const nlohmann::json json = ParseJson(text, problems);
        JsonObject object({&json, ""}, problems);
        read(object, problems, options);
        object.RejectUnknownKeys();
        problems.ThrowIfAny();
        return options;
    } catch (const InputError& mistakes) {
        throw WrongUse(mistakes);
    }
}

/// Tells mistakes of another reader as those of the place.
void AddMistakes(const InputError& mistakes, const std::string& pointer, JsonProblems& problems)
{
    for (const InputProblem& mistake : mistakes.GetProblems())
        problems.Add(pointer + (mistake.place.starts_with('/') ? mistake.place : std::string()),
                     mistake.text, mistake.nearestNames);
}

std::vector<std::filesystem::path> ToPaths(const std::optional<std::vector<std::string>>& texts)
{
    return texts ? std::vector<std::filesystem::path>(texts->begin(), texts->end())
                 : std::vector<std::filesystem::path>();
}

void ReadLimit(JsonObject& object, std::string_view key, ListLimit& limit)
{
    if (const auto number = object.GetNumber(key, kCounts))
        limit = ListLimit::FromOption(static_cast<std::size_t>(*number));
}

bool IsTrue(JsonObject& object, std::string_view key)
{
    return object.GetBoolean(key).value_or(false);
}

void ReadKind(JsonObject& object, JsonProblems& problems, ImportKind& kind)
{
    const PlacedJson from = object.Find("from");
    if (from.value == nullptr)
        return;
    const std::vector<std::string> words = ListImportWords();
    if (const auto position = ReadWord(from, {words.begin(), words.end()}, problems))
        kind = FindImportKind(words[*position]).value();
}

void ReadSettings(JsonObject& object, JsonProblems& problems, std::vector<Setting>& settings)
{
    for (const auto& [name, value] : object.GetMembers("settings")) {
        const auto number = ReadNumber(value, problems);
        try {
            CheckSettingName({}, name);
        } catch (const InputError& mistakes) {
            AddMistakes(mistakes, value.pointer, problems);
            continue;
        }
        const std::size_t slash = name.find('/');
        settings.push_back({.section = name.substr(0, slash),
                            .key = name.substr(slash + 1),
                            .value = number.value_or(0)});
    }
}

/// Reads what requests do not say.
void ReadRequestDefaults(JsonObject& object, JsonProblems& problems, Question& defaults)
{
    const PlacedJson json = object.Find("defaults");
    if (json.value == nullptr)
        return;
    try {
        std::vector<Setting> settings = std::move(defaults.settings);
        defaults = ReadDefaults(json.value->dump());
        defaults.settings = std::move(settings);
    } catch (const InputError& mistakes) {
        AddMistakes(mistakes, json.pointer, problems);
    }
}

void ReadSeverities(JsonObject& object, JsonProblems& problems, CheckOptions& check)
{
    std::vector<std::string_view> codes;
    std::transform(kRules.begin(), kRules.end(), std::back_inserter(codes),
                   [](const Rule& rule) { return std::string_view(rule.code); });
    constexpr std::array kSeverities{ESeverity::Off, ESeverity::Note, ESeverity::Warning,
                                     ESeverity::Error};
    std::vector<std::string_view> words;
    std::transform(kSeverities.begin(), kSeverities.end(), std::back_inserter(words),
                   [](ESeverity severity) { return ToText(severity); });
    for (const auto& [code, value] : object.GetMembers("severities")) {
        const nlohmann::json name = code;
        if (!ReadWord({&name, value.pointer}, codes, problems))
            continue;
        if (const auto position = ReadWord(value, words, problems))
            check.severities[code] = kSeverities[*position];
    }
}

} // namespace

OpenOptions ReadOpenOptions(const char* json)
{
    const auto read = [](JsonObject& object, JsonProblems& problems, OpenOptions& options) {
        ReadKind(object, problems, options.kind);
        const JsonWords<ERoles> roles{{"plain", ERoles::Plain}, {"shortcuts", ERoles::Shortcuts}};
        options.import.roles = object.GetChoice("roles", roles).value_or(ERoles::Plain);
        ServerOptions& server = options.import.server;
        server.patterns.schemas = object.GetTexts("schemas").value_or(std::vector<std::string>());
        server.patterns.tables = object.GetTexts("tables").value_or(std::vector<std::string>());
        const NumberRange range{.minimum = 0, .maximum = kLongestStatement};
        if (const auto seconds = object.GetNumber("statementTimeout", range))
            server.limits.statement = std::chrono::seconds(*seconds);
        options.histories = ToPaths(object.GetTexts("history"));
        ReadSettings(object, problems, options.settings);
    };
    return ReadObject(json, OpenOptions(), read);
}

CheckCallOptions ReadCheckOptions(const char* json)
{
    const auto read = [](JsonObject& object, JsonProblems& problems, CheckCallOptions& options) {
        ReadSeverities(object, problems, options.check);
        options.baseline = object.GetText("baseline");
        ReadLimit(object, "limit", options.view.limit);
        if (IsTrue(object, "accepted"))
            options.view.accepted = CheckView::EAccepted::Shown;
        CheckLimits& limits = options.check.limits;
        const NumberRange joins{.minimum = 1, .maximum = kMostPathJoins};
        if (const auto number = object.GetNumber("pathJoins", joins))
            limits.pathJoins = *number;
        if (const auto number = object.GetNumber("pathSteps", kCounts))
            limits.pathSteps = static_cast<std::size_t>(*number);
    };
    return ReadObject(json, CheckCallOptions(), read);
}

DrawOptions ReadDrawOptions(const char* json)
{
    const auto read = [](JsonObject& object, JsonProblems& /*problems*/, DrawOptions& options) {
        const JsonWords<DrawOptions::EForm> forms{{"svg", DrawOptions::EForm::Svg},
                                                  {"dot", DrawOptions::EForm::Dot}};
        options.form = object.GetChoice("format", forms).value_or(options.form);
        options.around = object.GetTexts("around").value_or(std::vector<std::string>());
        ReadLimit(object, "limit", options.limit);
    };
    return ReadObject(json, DrawOptions(), read);
}

BatchCallOptions ReadBatchOptions(const char* json, const Question& defaults)
{
    const auto read = [](JsonObject& object, JsonProblems& problems, BatchCallOptions& options) {
        const NumberRange range{.minimum = 1, .maximum = kMostJobs};
        options.jobs = static_cast<std::size_t>(object.GetNumber("jobs", range).value_or(1));
        ReadLimit(object, "alternatives", options.alternatives);
        ReadRequestDefaults(object, problems, options.defaults);
    };
    return ReadObject(json, BatchCallOptions{.defaults = defaults}, read);
}

EvaluateOptions ReadEvaluateOptions(const char* json, const Question& defaults)
{
    const auto read = [](JsonObject& object, JsonProblems& problems, EvaluateOptions& options) {
        ReadRequestDefaults(object, problems, options.defaults);
        const auto files = object.GetTexts("history");
        if (files)
            options.histories = ToPaths(files);
        const JsonWords<EHistoryRound> rounds{{"leave-one-out", EHistoryRound::LeaveOneOut},
                                              {"replay", EHistoryRound::Replay}};
        options.round = object.GetChoice("round", rounds).value_or(EHistoryRound::None);
        if (files && options.round != EHistoryRound::None)
            problems.Add("/history", "cannot be given with \"round\"");
    };
    return ReadObject(json, EvaluateOptions{.defaults = defaults}, read);
}

WriteOptions ReadWriteOptions(const char* json)
{
    WriteOptions defaults;
    defaults.format.signals = EEndingSignals::LeftToHost;
    const auto read = [](JsonObject& object, JsonProblems& /*problems*/, WriteOptions& options) {
        ReadLimit(object, "alternatives", options.format.alternatives);
        SqlOptions& sql = options.format.sql;
        if (IsTrue(object, "select"))
            sql.select = SqlOptions::ESelect::FirstItems;
        if (IsTrue(object, "inner"))
            sql.outerJoins = SqlOptions::EOuterJoins::Never;
        if (IsTrue(object, "skipPassedTables"))
            sql.passedTables = SqlOptions::EPassedTables::Skipped;
        JsonWords<const SqlDialect*> dialects;
        for (const SqlDialect& dialect : GetSqlDialects())
            dialects.emplace_back(dialect.word, &dialect);
        sql.dialect = object.GetChoice("dialect", dialects).value_or(nullptr);
        options.start = object.GetText("start");
    };
    return ReadObject(json, std::move(defaults), read);
}

} // namespace qe::binding
