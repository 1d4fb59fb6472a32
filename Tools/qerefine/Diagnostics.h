#ifndef TOOLS_QEREFINE_DIAGNOSTICS_H
#define TOOLS_QEREFINE_DIAGNOSTICS_H

#include <iosfwd>

namespace qe::tool {

class InputError;

/// Writes one line for each problem, made harmless for the terminal.
void WriteProblems(std::ostream& error, const InputError& problems);

} // namespace qe::tool

#endif
