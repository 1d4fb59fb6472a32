#include "Tools/qerefine/PathPrompt.h"

#include "Toolkit/Answers/AnswerText.h"
#include "Tools/qerefine/CommandContext.h"

#include <charconv>
#include <istream>
#include <ostream>
#include <string>

namespace qe::tool {

std::size_t AskForPath(CommandContext& context, const Answer& answer)
{
    const std::size_t count = answer.alternatives.size();
    WriteAlternatives(context.error, answer, ListLimit::All());
    std::string line;
    while (true) {
        context.error << "Choose 1 to " << count << " [1]: " << std::flush;
        if (!std::getline(context.input, line) || line.empty())
            return 0;
        std::size_t number = 0;
        const char* const end = line.data() + line.size();
        const auto [stop, failure] = std::from_chars(line.data(), end, number);
        if (failure == std::errc() && stop == end && number >= 1 && number <= count)
            return number - 1;
    }
}

} // namespace qe::tool
