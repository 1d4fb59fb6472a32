#include "Toolkit/Check/Baseline.h"

#include "Toolkit/Check/CheckReport.h"
#include "Toolkit/Model/ContentReader.h"
#include "Toolkit/Model/DecisionNames.h"
#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/JsonObject.h"
#include "Toolkit/Text/JsonText.h"

#include <nlohmann/json.hpp>

namespace qe::tool {

namespace {

constexpr const char* kFormat = "format";
constexpr const char* kFormatName = "qerefine-baseline";
constexpr const char* kVersion = "version";
constexpr int kBaselineVersion = 1;
constexpr const char* kFindings = "findings";

} // namespace

std::vector<AcceptedFinding> ReadBaseline(const std::filesystem::path& path)
{
    JsonProblems problems(path.string());
    const nlohmann::json document = ParseJson(ReadInputFile(path), problems);
    JsonObject top({&document, ""}, problems);
    const PlacedJson format = top.Find(kFormat, EPresence::Required);
    if (format.value != nullptr && *format.value != kFormatName)
        problems.Add(format.pointer, std::string("must be \"") + kFormatName + '"');
    // What is no baseline has nothing but mistakes.
    problems.ThrowIfAny();
    static_cast<void>(top.GetNumber(kVersion, {kBaselineVersion, kBaselineVersion}));
    std::vector<AcceptedFinding> accepted;
    for (const PlacedJson& json : top.GetList(kFindings))
        accepted.push_back(ReadAcceptedFinding(json, problems));
    top.RejectUnknownKeys();
    problems.ThrowIfAny();
    return accepted;
}

std::string WriteBaselineText(const CheckReport& report, const std::string& reason)
{
    std::vector<AcceptedFinding> accepted;
    for (const RuleReport& rule : report.rules) {
        for (const Finding& finding : rule.found.findings) {
            if (!finding.accepted)
                accepted.push_back({.id = finding.id, .reason = reason});
            else if (finding.accepted->place == Acceptance::EPlace::Baseline)
                accepted.push_back({.id = finding.id, .reason = finding.accepted->reason});
        }
    }
    return FormatJson(
        {{kFormat, kFormatName}, {kVersion, kBaselineVersion}, {kFindings, ToJson(accepted)}});
}

} // namespace qe::tool
