#ifndef ENGINE_EXPRESSION_MARKUPREMOVER_H
#define ENGINE_EXPRESSION_MARKUPREMOVER_H

#include "Engine/Expression/Tag.h"
#include "Engine/Expression/UntaggedText.h"

#include <map>
#include <string_view>

namespace qe::expression {

/// Takes the markup out of one expression, as AQE_Expression::GetUntaggedExpression promises.
/// Time is linear in the text but for the table of closing tags.
class MarkupRemover
{
public:
    /// `text` must outlive the remover.
    explicit MarkupRemover(std::string_view text);

    /// Gives the text without markup. Call it once.
    [[nodiscard]] UntaggedText Run();

private:
    /// Steps over the token, blank or entity at the offset; gives the offset behind it.
    [[nodiscard]] std::size_t CopyPiece(std::size_t offset);
    [[nodiscard]] bool IsMarkup(const Tag& tag) const;
    void NoteClosingTags();
    void Emit(std::string_view piece, std::size_t sourceOffset);

    std::string_view mText;
    UntaggedText mResult;
    /// Where the last closing tag of each name ends.
    std::map<std::string_view, std::size_t> mLastClosing;
    /// Whether what has been copied so far ends in an operand, so that an operator may follow.
    bool mOperandBefore = false;
    /// Whether markup has been left out since the last copied piece.
    bool mGap = false;
};

} // namespace qe::expression

#endif
