#ifndef TOOLKIT_PAGE_REQUESTROWS_H
#define TOOLKIT_PAGE_REQUESTROWS_H

#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

struct Answer;
struct Question;

/// Returns what was asked and with which settings, as titles and texts. What was left at "nothing"
/// is left out.
[[nodiscard]] std::vector<std::pair<std::string, std::string>>
ListRequestRows(const Question& question, const Answer& answer);

} // namespace qe::tool

#endif
