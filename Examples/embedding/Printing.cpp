#include "Printing.h"

#include "HostTables.h"

namespace host {

std::string ToLine(const std::vector<amd_id>& ids)
{
    std::string line;
    for (const amd_id& id : ids) {
        if (!line.empty())
            line += ", ";
        line += GetName(id);
    }
    return line.empty() ? "nothing" : line;
}

} // namespace host
