#ifndef TOOLKIT_ANSWERS_CHECKOUTPUT_H
#define TOOLKIT_ANSWERS_CHECKOUTPUT_H

#include <iosfwd>
#include <string>

namespace qe::tool {

struct CheckReport;

/// Writes the report for people: the findings, then one line for each rule that found something.
void WriteCheckText(const CheckReport& report, std::ostream& out);

/// Writes the report as one JSON document, "qerefine-check" version 1.
void WriteCheckJson(const CheckReport& report, const std::string& modelName, std::ostream& out);

} // namespace qe::tool

#endif
