#ifndef TOOLKIT_TEXT_INPUTERROR_H
#define TOOLKIT_TEXT_INPUTERROR_H

#include <exception>
#include <string>
#include <vector>

namespace qe::tool {

/// One mistake in what the user gave.
struct InputProblem
{
    /// Where it is: "model.json:12:7" for syntax, "model.json#/subjects/3/name" for content,
    /// "--set" for an argument.
    std::string place;
    /// One sentence, fixed text first, names and values last.
    std::string text;
    /// Where a name was wrong: the nearest right ones, best first.
    std::vector<std::string> nearestNames{};
};

/// All mistakes in one input. Nothing of that input is used.
class InputError : public std::exception
{
public:
    explicit InputError(std::vector<InputProblem> problems);

    [[nodiscard]] const std::vector<InputProblem>& GetProblems() const noexcept
    {
        return mProblems;
    }

    /// Returns one line for each problem: "place: text (did you mean X or Y?)".
    [[nodiscard]] const char* what() const noexcept override { return mText.c_str(); }

private:
    std::vector<InputProblem> mProblems;
    std::string mText;
};

} // namespace qe::tool

#endif
