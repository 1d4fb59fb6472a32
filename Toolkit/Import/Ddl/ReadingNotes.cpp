#include "Toolkit/Import/Ddl/ReadingNotes.h"

namespace qe::tool {

namespace {

constexpr std::size_t kMostTold = 100;

} // namespace

void ReadingNotes::Tell(const ScriptPlace& place, const std::string& text)
{
    if (mTold.size() < kMostTold)
        mTold.push_back(place.path->string() + ":" + std::to_string(place.line) + ": " + text);
    else
        ++mNotTold;
}

std::string ReadingNotes::DescribeExtent() const
{
    return std::to_string(mStatements) + " statements, " + std::to_string(mSkipped) +
           " of them passed over";
}

std::vector<std::string> ReadingNotes::List() const
{
    std::vector<std::string> notes = mTold;
    if (mNotTold > 0)
        notes.push_back("more that could not be read: " + std::to_string(mNotTold));
    if (mPartialKeys > 0)
        notes.push_back("unique keys left out that are over expressions, over the beginnings of "
                        "columns or for some rows only: " +
                        std::to_string(mPartialKeys));
    if (mPartitions > 0)
        notes.push_back("partitions left out, whose rows are read through their tables: " +
                        std::to_string(mPartitions));
    return notes;
}

} // namespace qe::tool
