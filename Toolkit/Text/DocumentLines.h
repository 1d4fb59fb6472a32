#ifndef TOOLKIT_TEXT_DOCUMENTLINES_H
#define TOOLKIT_TEXT_DOCUMENTLINES_H

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>

namespace qe::tool {

/// The lines, from 1, on which values of a document stand, by the pointers to them.
using DocumentLines = std::map<std::string, std::size_t>;

/// Returns the lines of those of the pointers that the document has.
using LineFinder = std::function<DocumentLines(const std::set<std::string>& pointers)>;

/// Takes down on which lines some of the values stand while a document is read. Refers to the
/// pointers.
class LineRecord
{
public:
    explicit LineRecord(const std::set<std::string>& wanted) : mWanted(&wanted) {}

    void SetLine(std::size_t line) { mLine = line; }
    [[nodiscard]] std::size_t& Line() { return mLine; }

    /// Records that the value stands on the current line.
    void Add(const std::string& pointer)
    {
        if (mWanted->count(pointer) != 0)
            mLines.emplace(pointer, mLine);
    }

    [[nodiscard]] const DocumentLines& Get() const { return mLines; }

private:
    const std::set<std::string>* mWanted;
    std::size_t mLine = 1;
    DocumentLines mLines;
};

} // namespace qe::tool

#endif
