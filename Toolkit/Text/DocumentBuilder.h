#ifndef TOOLKIT_TEXT_DOCUMENTBUILDER_H
#define TOOLKIT_TEXT_DOCUMENTBUILDER_H

#include "Toolkit/Text/DocumentLines.h"
#include "Toolkit/Text/JsonProblems.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

/// Objects and lists of a document may be nested this deep.
inline constexpr std::size_t kMaximumDocumentDepth = 256;

/// Tells that a document is nested too deep.
class DepthError : public InputError
{
public:
    /// Takes the place of the value that goes too deep.
    explicit DepthError(const std::string& place);
};

/// Puts together the document that a parser reads piece by piece. It knows, which parsers do not,
/// where in the document it is and whether a key has been there before. Refers to the problems.
class DocumentBuilder
{
public:
    explicit DocumentBuilder(JsonProblems& problems) : mProblems(&problems) {}

    /// Lets the record know of every value; it must outlive the builder.
    void Report(LineRecord& lines) { mLines = &lines; }

    [[nodiscard]] nlohmann::json TakeDocument() { return std::move(mDocument); }

    [[nodiscard]] std::size_t GetDepth() const { return mLevels.size(); }
    /// Returns the object or list that is being filled; there must be one.
    [[nodiscard]] nlohmann::json& GetOpen() { return *mLevels.back().value; }
    /// Returns the pointer to the value that came last.
    [[nodiscard]] std::string GetPointer() const;
    /// Returns the pointer to the value that comes next.
    [[nodiscard]] std::string GetNextPointer() const;

    /// Returns the value where it lies now, which the next one may move.
    nlohmann::json& AddValue(nlohmann::json value);
    /// Goes on within an object or list. Throws a DepthError when that is too deep.
    void Enter(nlohmann::json value);
    void Leave() { mLevels.pop_back(); }
    /// Names the value that comes next. A key that the object has already is reported.
    void AddKey(std::string name);

private:
    struct Level
    {
        nlohmann::json* value;
        /// In an object, what was named last.
        const std::string* key = nullptr;
        nlohmann::json* member = nullptr;
    };

    JsonProblems* mProblems;
    LineRecord* mLines = nullptr;
    nlohmann::json mDocument;
    std::vector<Level> mLevels;
};

} // namespace qe::tool

#endif
