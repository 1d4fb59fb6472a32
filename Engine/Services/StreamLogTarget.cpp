#include "Engine/Services/StreamLogTarget.h"

#include <iomanip>
#include <iostream>
#include <sstream>
#include <utility>

namespace qe {
namespace {

std::string Compose(const LogEntry& entry)
{
    std::ostringstream out;
    out << "--- " << entry.name << ", level " << entry.level;
    if (!entry.title.IsEmpty())
        out << ", " << entry.title;
    if (entry.component != 0 || entry.message != 0) {
        out << std::hex << std::uppercase << std::setfill('0') << " (0x" << std::setw(8)
            << entry.component << ", 0x" << std::setw(8) << entry.message << ')';
    }
    out << '\n' << entry.text;
    if (!entry.text.View().ends_with('\n'))
        out << '\n';
    return out.str();
}

} // namespace

StreamLogTarget::StreamLogTarget(std::string path) : mPath(std::move(path))
{
    if (!mPath.empty() && mPath != "-" && mPath != "stderr")
        mFile.open(mPath, std::ios::app | std::ios::binary);
}

void StreamLogTarget::Write(const LogEntry& entry)
{
    const std::string text = Compose(entry);
    const std::lock_guard lock(mMutex);
    std::ostream& out = mFile.is_open() ? static_cast<std::ostream&>(mFile) : std::cerr;
    out << text << std::flush;
}

} // namespace qe
