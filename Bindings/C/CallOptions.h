#ifndef BINDINGS_C_CALLOPTIONS_H
#define BINDINGS_C_CALLOPTIONS_H

#include "Toolkit/Answers/CheckOutput.h"
#include "Toolkit/Answers/FormatInput.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Check/CheckReport.h"
#include "Toolkit/Evaluate/HistoryRounds.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Text/DisplayText.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// What the options of the calls say, as qerefine.h lists them. Each reader takes the JSON, null
/// for none, and throws WrongUse with all mistakes in it.
namespace qe::binding {

struct OpenOptions
{
    tool::ImportKind kind{};
    tool::ImportOptions import{};
    std::vector<std::filesystem::path> histories{};
    std::vector<tool::Setting> settings{};
};

[[nodiscard]] OpenOptions ReadOpenOptions(const char* json);

struct CheckCallOptions
{
    tool::CheckOptions check{};
    tool::CheckView view{};
    /// A file of accepted findings; empty for none.
    std::filesystem::path baseline{};
};

[[nodiscard]] CheckCallOptions ReadCheckOptions(const char* json);

struct DrawOptions
{
    enum class EForm : std::uint8_t
    {
        Svg,
        Dot,
    };

    EForm form = EForm::Svg;
    std::vector<std::string> around{};
    tool::ListLimit limit{100};
};

[[nodiscard]] DrawOptions ReadDrawOptions(const char* json);

struct BatchCallOptions
{
    std::size_t jobs = 1;
    tool::ListLimit alternatives{0};
    tool::Question defaults{};
};

/// What requests do not say is as in `defaults`.
[[nodiscard]] BatchCallOptions ReadBatchOptions(const char* json, const tool::Question& defaults);

struct EvaluateOptions
{
    tool::Question defaults{};
    /// Nothing: that of the model.
    std::optional<std::vector<std::filesystem::path>> histories{};
    tool::EHistoryRound round = tool::EHistoryRound::None;
};

[[nodiscard]] EvaluateOptions ReadEvaluateOptions(const char* json, const tool::Question& defaults);

struct WriteOptions
{
    tool::FormatOptions format{};
    /// Empty: the refiner's choice.
    std::string start{};
};

[[nodiscard]] WriteOptions ReadWriteOptions(const char* json);

} // namespace qe::binding

#endif
