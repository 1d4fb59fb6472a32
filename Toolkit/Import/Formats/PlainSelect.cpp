#include "Toolkit/Import/Formats/PlainSelect.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Ddl/SqlTokens.h"

#include <cstddef>

namespace qe::tool {

namespace {

/// Reads a SELECT that does nothing but name columns of one table.
class PlainSelect
{
public:
    explicit PlainSelect(std::string_view query)
    {
        SqlTokenizer tokens(query, kQuoting);
        do
            mTokens.push_back(tokens.Next());
        while (mTokens.back().kind != EToken::End && mTokens.back().kind != EToken::Unended);
    }

    std::optional<QueriedTable> Read()
    {
        if (!TakeWord("select") || Next().IsWord("distinct") || Next().IsWord("top") ||
            Next().IsWord("all"))
            return std::nullopt;
        QueriedTable table;
        do {
            if (!ReadColumn(table))
                return std::nullopt;
        } while (TakeSign(','));
        if (!TakeWord("from"))
            return std::nullopt;
        table.path = TakePath();
        TakeAlias();
        if (Next().kind == EToken::Terminator)
            ++mAt;
        if (table.path.empty() || Next().kind != EToken::End)
            return std::nullopt;
        return table;
    }

private:
    static constexpr EDialect kQuoting = EDialect::Sqlite;

    [[nodiscard]] const SqlToken& Next() const { return mTokens[mAt]; }

    bool TakeWord(std::string_view word)
    {
        const bool isThere = Next().IsWord(word);
        mAt += isThere ? 1 : 0;
        return isThere;
    }

    bool TakeSign(char sign)
    {
        const bool isThere = Next().IsSign(sign);
        mAt += isThere ? 1 : 0;
        return isThere;
    }

    [[nodiscard]] bool IsName() const
    {
        return Next().kind == EToken::Word || Next().kind == EToken::QuotedName;
    }

    /// Returns the names that dots join; none where they end in a dot.
    std::vector<std::string> TakePath()
    {
        std::vector<std::string> path;
        do {
            if (!IsName())
                return {};
            path.push_back(ToName(mTokens[mAt++], kQuoting));
        } while (TakeSign('.') && !Next().IsSign('*'));
        return path;
    }

    /// Returns what something is called further on; empty where it keeps its name.
    std::string TakeAlias()
    {
        const bool isTold = TakeWord("as");
        if (!IsName() || (!isTold && Next().IsWord("from")))
            return {};
        return ToName(mTokens[mAt++], kQuoting);
    }

    bool ReadColumn(QueriedTable& table)
    {
        if (TakeSign('*'))
            return true;
        const std::vector<std::string> path = TakePath();
        if (path.empty())
            return false;
        if (TakeSign('*'))
            return true;
        const std::string alias = TakeAlias();
        if (!alias.empty() && ascii::ToLower(alias) != ascii::ToLower(path.back()))
            table.renamed.insert(alias);
        return true;
    }

    std::vector<SqlToken> mTokens;
    std::size_t mAt = 0;
};

} // namespace

std::optional<QueriedTable> SeeThroughSql(std::string_view query)
{
    return PlainSelect(query).Read();
}

} // namespace qe::tool
