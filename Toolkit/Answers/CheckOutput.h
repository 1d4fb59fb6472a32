#ifndef TOOLKIT_ANSWERS_CHECKOUTPUT_H
#define TOOLKIT_ANSWERS_CHECKOUTPUT_H

#include "Toolkit/Text/DisplayText.h"

#include <cstdint>
#include <iosfwd>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace qe::tool {

struct CheckReport;

/// How much of a report is shown.
struct CheckView
{
    enum class EAccepted : std::uint8_t
    {
        Counted,
        Shown,
    };

    /// The findings of each rule that are shown one by one. Where more count, text shows so many
    /// of their causes instead.
    ListLimit limit{20};
    EAccepted accepted = EAccepted::Counted;
};

/// Writes the report for people: the findings or their causes, what is accepted in vain, and one
/// line with the numbers.
void WriteText(std::ostream& out, const CheckReport& report, const CheckView& view);

/// Returns the JSON form of the report, "qerefine-check" version 1.
[[nodiscard]] nlohmann::ordered_json ToJson(const CheckReport& report, const std::string& modelName,
                                            const CheckView& view);

} // namespace qe::tool

#endif
