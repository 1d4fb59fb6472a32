#ifndef TOOLKIT_ANSWERS_CHECKOUTPUT_H
#define TOOLKIT_ANSWERS_CHECKOUTPUT_H

#include <iosfwd>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace qe::tool {

struct CheckReport;

/// Writes the report for people: the findings, then one line for each rule that found something.
void WriteText(std::ostream& out, const CheckReport& report);

/// Returns the JSON form of the report, "qerefine-check" version 1.
[[nodiscard]] nlohmann::ordered_json ToJson(const CheckReport& report,
                                            const std::string& modelName);

} // namespace qe::tool

#endif
