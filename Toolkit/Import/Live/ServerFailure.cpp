#include "Toolkit/Import/Live/ServerFailure.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Text/InputFile.h"

namespace qe::tool {

void ThrowServerFailure(const std::string& place, std::string_view said)
{
    std::string line;
    bool isApart = false;
    for (const char c : said) {
        if (ascii::IsSpace(c)) {
            isApart = !line.empty();
            continue;
        }
        if (isApart)
            line += ' ';
        isApart = false;
        line += c;
    }
    throw InputError({{place, "cannot be read: " + (line.empty() ? "out of memory" : line)}});
}

} // namespace qe::tool
