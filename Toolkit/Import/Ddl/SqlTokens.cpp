#include "Toolkit/Import/Ddl/SqlTokens.h"

#include "Engine/Services/Characters.h"

#include <algorithm>
#include <array>
#include <vector>

namespace qe::tool {

/// How a dialect writes names, texts and comments, where dialects differ.
struct LexicalRules
{
    /// The opening quotes of names.
    std::string_view nameQuotes;
    /// The quotes of texts in which "\" takes the next letter for itself.
    std::string_view escapingQuotes;
    bool hasNestedComments;
    bool hasHashComments;
    bool hasDollarQuotes;
    /// The letter before texts with quotes of their own choice or with escapes; 0 for none.
    char textPrefix;
};

namespace {

constexpr std::array kRules{
    LexicalRules{"\"`[", "", false, false, false, '\0'},
    LexicalRules{"\"", "", true, false, true, 'e'},
    LexicalRules{"`", "'\"", false, true, false, '\0'},
    LexicalRules{"\"[", "", true, false, false, '\0'},
    LexicalRules{"\"", "", false, false, false, 'q'},
};

const LexicalRules& RulesOf(EDialect dialect)
{
    return kRules[static_cast<std::size_t>(dialect)];
}

constexpr bool StartsWord(char c)
{
    return ascii::IsLetter(c) || c == '_' || c == '@' || c == '#' ||
           static_cast<unsigned char>(c) >= 0x80;
}

constexpr bool ContinuesWord(char c)
{
    return StartsWord(c) || ascii::IsDigit(c) || c == '$';
}

/// Comments of a version that no server has are comments for everybody.
constexpr std::string_view kNoVersion = "999999";

/// Returns the size of the opening of a comment that servers run, such as "/*!40101"; 0 when the
/// text does not begin with one.
std::size_t MeasureVersionComment(std::string_view text)
{
    std::size_t size = text.starts_with("/*!") ? 3 : text.starts_with("/*M!") ? 4 : 0;
    if (size == 0 || text.substr(size).starts_with(kNoVersion))
        return 0;
    while (size < text.size() && ascii::IsDigit(text[size]))
        ++size;
    return size;
}

} // namespace

bool SqlToken::IsWord(std::string_view word) const
{
    return kind == EToken::Word && text.size() == word.size() &&
           std::equal(text.begin(), text.end(), word.begin(),
                      [](char a, char b) { return ascii::ToLower(a) == b; });
}

std::string ToContent(const SqlToken& text)
{
    const char end = text.text.front() == '[' ? ']' : text.text.front();
    const std::string_view quoted =
        text.text.substr(1, std::max<std::size_t>(text.text.size(), 2) - 2);
    std::string content;
    content.reserve(quoted.size());
    for (std::size_t i = 0; i < quoted.size(); ++i) {
        content += quoted[i];
        if (quoted[i] == end)
            ++i;
    }
    return content;
}

std::string ToName(const SqlToken& token, EDialect dialect)
{
    if (token.kind != EToken::Word)
        return ToContent(token);
    return FoldName(std::string(token.text), GetSqlDialect(dialect).names.folding);
}

NameSet ListQuotedNames(std::span<const SqlToken> tokens, EDialect dialect)
{
    NameSet names;
    for (const SqlToken& token : tokens)
        if (token.kind == EToken::QuotedName)
            names.insert(ToName(token, dialect));
    return names;
}

NameSet ListQuotedNames(std::string_view statement, EDialect dialect)
{
    std::vector<SqlToken> tokens;
    SqlTokenizer tokenizer(statement, dialect);
    for (SqlToken token = tokenizer.Next();
         token.kind != EToken::End && token.kind != EToken::Unended; token = tokenizer.Next())
        tokens.push_back(token);
    return ListQuotedNames(tokens, dialect);
}

SqlTokenizer::SqlTokenizer(std::string_view script, EDialect dialect)
    : mScript(script), mRules(&RulesOf(dialect))
{}

SqlToken SqlTokenizer::Next()
{
    if (!SkipSpace())
        return Take(EToken::Unended, Rest().size());
    const std::string_view rest = Rest();
    if (rest.empty())
        return Take(EToken::End, 0);
    if (rest.starts_with(mTerminator))
        return Take(EToken::Terminator, mTerminator.size());
    const char first = rest.front();
    if (mRules->nameQuotes.find(first) != std::string_view::npos)
        return TakeQuoted(EToken::QuotedName, first == '[' ? ']' : first, 0, false);
    if (first == '\'' || first == '"' || first == '`')
        return TakeQuoted(EToken::Text, first, 0,
                          mRules->escapingQuotes.find(first) != std::string_view::npos);
    if (StartsWord(first))
        return TakeWord();
    if (ascii::IsDigit(first))
        return TakeNumber();
    std::string end;
    if (first == '$' && TakesDollarQuote(end))
        return TakeAlternative(end.size(), end);
    return Take(EToken::Sign, 1);
}

SqlToken SqlTokenizer::Take(EToken kind, std::size_t size)
{
    const SqlToken token{.kind = kind, .text = mScript.substr(mOffset, size)};
    mOffset += size;
    return token;
}

bool SqlTokenizer::SkipSpace()
{
    while (mOffset < mScript.size()) {
        if (ascii::IsSpace(mScript[mOffset])) {
            ++mOffset;
            continue;
        }
        const std::size_t size = MeasureComment();
        if (size == std::string_view::npos)
            return false;
        if (size == 0)
            return true;
        mOffset += size;
    }
    return true;
}

std::size_t SqlTokenizer::MeasureComment()
{
    const std::string_view rest = Rest();
    if (rest.starts_with("--") || (mRules->hasHashComments && rest.front() == '#')) {
        // What is "5--3" for one server is a comment for the others.
        const bool isMinus = mRules->hasHashComments && rest.size() > 2 && rest.front() == '-' &&
                             !ascii::IsSpace(rest[2]);
        return isMinus ? 0 : std::min(rest.find('\n'), rest.size());
    }
    if (!mRules->hasHashComments)
        return rest.starts_with("/*") ? MeasureBlockComment() : 0;
    if (mIsInVersionComment && rest.starts_with("*/")) {
        mIsInVersionComment = false;
        return 2;
    }
    const std::size_t opening = MeasureVersionComment(rest);
    mIsInVersionComment = mIsInVersionComment || opening != 0;
    if (opening != 0)
        return opening;
    return rest.starts_with("/*") ? MeasureBlockComment() : 0;
}

std::size_t SqlTokenizer::MeasureBlockComment() const
{
    std::size_t depth = 1;
    std::size_t position = mOffset + 2;
    while (depth > 0) {
        position = mScript.find_first_of("*/", position);
        if (position == std::string_view::npos)
            return position;
        const std::string_view pair = mScript.substr(position, 2);
        if (pair == "*/")
            --depth;
        else if (pair == "/*" && mRules->hasNestedComments)
            ++depth;
        else {
            ++position;
            continue;
        }
        position += 2;
    }
    return position - mOffset;
}

SqlToken SqlTokenizer::TakeQuoted(EToken kind, char end, std::size_t prefix, bool isEscaping)
{
    const std::string_view rest = Rest();
    const char stops[] = {end, isEscaping ? '\\' : end};
    std::size_t position = prefix + 1;
    while (true) {
        position = rest.find_first_of({stops, 2}, position);
        if (position == std::string_view::npos)
            return Take(EToken::Unended, rest.size());
        if (rest[position] != end || rest.substr(position + 1).starts_with(end)) {
            position += 2;
            continue;
        }
        SqlToken token = Take(kind, position + 1);
        token.text.remove_prefix(prefix);
        return token;
    }
}

SqlToken SqlTokenizer::TakeWord()
{
    const std::string_view rest = Rest();
    if (mRules->textPrefix != '\0' && rest.size() > 2 &&
        ascii::ToLower(rest.front()) == mRules->textPrefix && rest[1] == '\'') {
        if (mRules->textPrefix == 'e')
            return TakeQuoted(EToken::Text, '\'', 1, true);
        const std::size_t pair = std::string_view("[{(<").find(rest[2]);
        const char end = pair == std::string_view::npos ? rest[2] : "]})>"[pair];
        return TakeAlternative(3, {end, '\''});
    }
    // "END$$" is a word and a terminator where statements end in "$$".
    const bool mayEndInside = mTerminator.front() == '$' || StartsWord(mTerminator.front());
    std::size_t size = 1;
    while (size < rest.size() && ContinuesWord(rest[size]) &&
           !(mayEndInside && rest.substr(size).starts_with(mTerminator)))
        ++size;
    return Take(EToken::Word, size);
}

SqlToken SqlTokenizer::TakeNumber()
{
    const std::string_view rest = Rest();
    std::size_t size = 1;
    while (size < rest.size() && (ContinuesWord(rest[size]) || rest[size] == '.'))
        ++size;
    return Take(EToken::Number, size);
}

SqlToken SqlTokenizer::TakeAlternative(std::size_t prefix, const std::string& end)
{
    const std::size_t found = Rest().find(end, prefix);
    if (found == std::string_view::npos)
        return Take(EToken::Unended, Rest().size());
    return Take(EToken::Text, found + end.size());
}

bool SqlTokenizer::TakesDollarQuote(std::string& end) const
{
    if (!mRules->hasDollarQuotes)
        return false;
    const std::string_view rest = Rest();
    std::size_t size = 1;
    while (size < rest.size() && rest[size] != '$' && ContinuesWord(rest[size]))
        ++size;
    // "$1" is a parameter.
    if (size == rest.size() || rest[size] != '$' || ascii::IsDigit(rest[1]))
        return false;
    end = rest.substr(0, size + 1);
    return true;
}

} // namespace qe::tool
