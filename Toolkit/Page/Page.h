#ifndef TOOLKIT_PAGE_PAGE_H
#define TOOLKIT_PAGE_PAGE_H

#include <iosfwd>

namespace qe::tool {

struct FormatInput;

/// Writes the answer as one page that needs nothing else: the picture, the paths with their
/// conditions and SQL, and the request. Throws InputError without Graphviz.
void WriteHtmlFormat(std::ostream& out, const FormatInput& input);

} // namespace qe::tool

#endif
