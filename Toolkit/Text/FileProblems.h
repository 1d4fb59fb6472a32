#ifndef TOOLKIT_TEXT_FILEPROBLEMS_H
#define TOOLKIT_TEXT_FILEPROBLEMS_H

#include "Toolkit/Text/InputError.h"

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// Gathers the mistakes of one JSON file. Places are JSON pointers, such as "/subjects/3/name".
class FileProblems
{
public:
    /// Takes the name of the file as messages show it.
    explicit FileProblems(std::string fileName) : mFileName(std::move(fileName)) {}

    /// Adds a mistake. Only the first hundred are told one by one.
    void Add(const std::string& pointer, const std::string& text,
             std::vector<std::string> nearestNames = {});

    /// Notes that a mistake which was told has consequences at that place.
    void Settle(const std::string& pointer) { mSettled.insert(pointer); }
    /// Tells whether a mistake was told at that place, so that what follows from it need not be.
    [[nodiscard]] bool IsSettled(const std::string& pointer) const
    {
        return mSettled.count(pointer) != 0;
    }

    /// Raises an InputError when there are mistakes.
    void RaiseIfAny();

private:
    std::string mFileName;
    std::vector<InputProblem> mProblems;
    std::size_t mLeftOut = 0;
    std::set<std::string> mSettled;
};

/// Gives the pointer to a member or element of what `pointer` leads to.
[[nodiscard]] std::string ChildPointer(const std::string& pointer, std::string_view key);
[[nodiscard]] std::string ChildPointer(const std::string& pointer, std::size_t index);

} // namespace qe::tool

#endif
