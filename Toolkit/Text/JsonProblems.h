#ifndef TOOLKIT_TEXT_JSONPROBLEMS_H
#define TOOLKIT_TEXT_JSONPROBLEMS_H

#include "Toolkit/Text/DocumentLines.h"
#include "Toolkit/Text/InputFile.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

/// The mistakes of one JSON document. Places are JSON pointers, such as "/subjects/3/name".
class JsonProblems
{
public:
    JsonProblems() = default;
    /// Takes the name of the document, which messages show before the pointers. A document without
    /// a name is a single line, of which messages show the pointers alone.
    explicit JsonProblems(std::string documentName) : mDocumentName(std::move(documentName)) {}

    [[nodiscard]] const std::string& GetDocumentName() const { return mDocumentName; }
    [[nodiscard]] bool IsEmpty() const { return mProblems.empty(); }

    /// Lets messages show lines before pointers.
    void SetLineFinder(LineFinder finder) { mFindLines = std::move(finder); }

    /// Adds a mistake. Only the first hundred are kept one by one; the others are counted.
    void Add(const std::string& pointer, const std::string& text,
             std::vector<std::string> nearestNames = {});

    /// Records that a mistake which was added has consequences at that place.
    void MarkReported(const std::string& pointer) { mReported.insert(pointer); }
    /// Returns whether a mistake was added at that place, so that what follows from it need not be.
    [[nodiscard]] bool IsReported(const std::string& pointer) const
    {
        return mReported.count(pointer) != 0;
    }

    /// Returns how messages show that place of the document; long pointers without their middle.
    [[nodiscard]] std::string ToPlace(const std::string& pointer) const;
    /// The same with the line that the place stands on.
    [[nodiscard]] std::string ToPlace(const std::string& pointer, std::size_t line) const;
    /// Returns the same for each of the pointers, with lines where they can be found. Reads the
    /// document for it.
    [[nodiscard]] std::map<std::string, std::string>
    FindPlaces(const std::set<std::string>& pointers) const;
    [[nodiscard]] std::string FindPlace(const std::string& pointer) const
    {
        return FindPlaces({pointer}).at(pointer);
    }

    /// Throws an InputError when there are mistakes.
    void ThrowIfAny() const;

private:
    struct Problem
    {
        std::string pointer;
        InputProblem problem;
    };

    std::string mDocumentName;
    LineFinder mFindLines;
    std::vector<Problem> mProblems;
    std::size_t mLeftOut = 0;
    std::set<std::string> mReported;
};

/// Returns the pointer to a member or element of what `pointer` leads to.
[[nodiscard]] std::string ChildPointer(const std::string& pointer, std::string_view key);
[[nodiscard]] std::string ChildPointer(const std::string& pointer, std::size_t index);

} // namespace qe::tool

#endif
