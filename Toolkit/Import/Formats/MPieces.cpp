#include "Toolkit/Import/Formats/MPieces.h"

#include "Engine/Services/Characters.h"

#include <algorithm>
#include <utility>

namespace qe::tool {

namespace {

bool IsWordByte(char c)
{
    return ascii::IsLetter(c) || ascii::IsDigit(c) || c == '_' || c == '.' ||
           static_cast<unsigned char>(c) >= 0x80;
}

/// Takes a query in M apart.
class MTokenizer
{
public:
    explicit MTokenizer(std::string_view query) : mRest(query) {}

    /// Returns nothing where a quote or comment does not end.
    std::optional<std::vector<MPiece>> Read()
    {
        while (SkipSpace() && !mRest.empty())
            TakePiece();
        return mIsBroken ? std::nullopt : std::optional(std::move(mPieces));
    }

private:
    bool SkipSpace()
    {
        while (!mRest.empty() && !mIsBroken) {
            if (ascii::IsSpace(mRest.front()))
                mRest.remove_prefix(1);
            else if (mRest.starts_with("//"))
                mRest.remove_prefix(std::min(mRest.find('\n'), mRest.size()));
            else if (mRest.starts_with("/*"))
                SkipComment();
            else
                break;
        }
        return !mIsBroken;
    }

    void SkipComment()
    {
        const std::size_t end = mRest.find("*/", 2);
        mIsBroken = end == std::string_view::npos;
        if (!mIsBroken)
            mRest.remove_prefix(end + 2);
    }

    void TakePiece()
    {
        const bool isQuotedName = mRest.starts_with("#\"");
        if (isQuotedName || mRest.front() == '"') {
            mRest.remove_prefix(isQuotedName ? 2 : 1);
            TakeQuoted(isQuotedName ? EMPiece::QuotedName : EMPiece::Text);
            return;
        }
        const auto end = std::find_if_not(mRest.begin(), mRest.end(), IsWordByte);
        const auto size = static_cast<std::size_t>(end - mRest.begin());
        const EMPiece kind = size == 0 ? EMPiece::Sign : EMPiece::Word;
        mPieces.push_back({kind, std::string(mRest.substr(0, std::max<std::size_t>(size, 1)))});
        mRest.remove_prefix(mPieces.back().text.size());
    }

    void TakeQuoted(EMPiece kind)
    {
        std::string text;
        while (!mRest.empty()) {
            if (mRest.starts_with("#(")) {
                SkipEscape();
                text += ' ';
                continue;
            }
            const bool isDoubled = mRest.starts_with("\"\"");
            const char next = mRest.front();
            mRest.remove_prefix(isDoubled ? 2 : 1);
            if (next == '"' && !isDoubled) {
                mPieces.push_back({kind, std::move(text)});
                return;
            }
            text += next;
        }
        mIsBroken = true;
    }

    /// Takes the end of a line, or a tab, as a blank. Others are not known.
    void SkipEscape()
    {
        for (const std::string_view escape : {"#(lf)", "#(cr)", "#(cr,lf)", "#(tab)"}) {
            if (mRest.starts_with(escape))
                return mRest.remove_prefix(escape.size());
        }
        mIsBroken = true;
        mRest = {};
    }

    std::string_view mRest;
    std::vector<MPiece> mPieces;
    bool mIsBroken = false;
};

bool IsOpening(const MPiece& piece)
{
    return piece.IsSign('(') || piece.IsSign('[') || piece.IsSign('{');
}

} // namespace

std::optional<std::vector<MPiece>> ReadMPieces(std::string_view query)
{
    return MTokenizer(query).Read();
}

std::optional<MPieces> TakeMGroup(MPieces pieces, std::size_t& at)
{
    const std::size_t start = at + 1;
    std::size_t depth = 0;
    for (; at < pieces.size(); ++at) {
        const MPiece& piece = pieces[at];
        if (IsOpening(piece))
            ++depth;
        else if (piece.IsSign(')') || piece.IsSign(']') || piece.IsSign('}'))
            --depth;
        if (depth == 0)
            return pieces.subspan(start, at++ - start);
    }
    return std::nullopt;
}

MPieces TakeMItem(MPieces pieces, std::size_t& at)
{
    const std::size_t start = at;
    while (at < pieces.size() && !pieces[at].IsSign(',')) {
        const MPiece& piece = pieces[at];
        if (!IsOpening(piece))
            ++at;
        else if (!TakeMGroup(pieces, at))
            break;
    }
    const MPieces item = pieces.subspan(start, at - start);
    at = std::min(at + 1, pieces.size());
    return item;
}

} // namespace qe::tool
