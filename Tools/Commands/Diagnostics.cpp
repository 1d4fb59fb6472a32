#include "Tools/Commands/Diagnostics.h"

#include "Tools/InputError.h"
#include "Tools/Output/DisplayText.h"

#include <ostream>
#include <string>

namespace qe::tool {

void WriteProblems(std::ostream& error, const InputError& problems)
{
    for (const InputProblem& problem : problems.GetProblems()) {
        std::string line = InputError({problem}).what();
        while (!line.empty() && line.back() == '\n')
            line.pop_back();
        error << ToDisplayText(line) << '\n';
    }
}

} // namespace qe::tool
