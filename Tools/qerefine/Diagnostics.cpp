#include "Tools/qerefine/Diagnostics.h"

#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputError.h"

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
