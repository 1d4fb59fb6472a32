#include "Toolkit/Sql/SqlNames.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace qe::tool {

namespace {

[[noreturn]] void Reject(const std::string& reason, std::string_view name)
{
    throw InputError({{"sql", reason + ": \"" + std::string(name) + '"'}});
}

/// Returns whether the name can stand without quotes in every dialect, but for what it says there.
bool IsPlain(std::string_view name)
{
    return !name.empty() && !ascii::IsDigit(name.front()) &&
           std::all_of(name.begin(), name.end(),
                       [](char c) { return ascii::IsLetter(c) || ascii::IsDigit(c) || c == '_'; });
}

bool IsReserved(std::string_view name, const NameForms& forms)
{
    const std::string word = ' ' + ascii::ToLower(std::string(name)) + ' ';
    return forms.reservedWords.find(word) != std::string_view::npos;
}

/// Returns whether some dialect takes the name without quotes.
bool CanBePlain(std::string_view name)
{
    return !name.empty() && !ascii::IsDigit(name.front()) &&
           std::all_of(name.begin(), name.end(), [](char c) {
               return ascii::IsLetter(c) || ascii::IsDigit(c) || ContinuesUtf8(c) ||
                      static_cast<unsigned char>(c) >= 0x80U ||
                      std::string_view("_$#@").find(c) != std::string_view::npos;
           });
}

std::size_t Measure(std::string_view name, NameLimit::EUnit unit)
{
    if (unit == NameLimit::EUnit::Bytes)
        return name.size();
    return static_cast<std::size_t>(
        std::count_if(name.begin(), name.end(), [](char c) { return !ContinuesUtf8(c); }));
}

} // namespace

bool WrittenNames::IsQuoted(const amd_id& subject, std::string_view name) const
{
    const auto found = quoted.find(subject);
    return found != quoted.end() && found->second.find(name) != found->second.end();
}

std::string QuoteIdentifier(std::string_view name, const SqlDialect& dialect)
{
    const NameForms& forms = dialect.names;
    if (name.empty() || name.find('\0') != std::string_view::npos)
        Reject("SQL cannot hold an empty name, nor one with a zero in it", name);
    if (forms.innerQuote == NameForms::EInnerQuote::None &&
        name.find(forms.closingQuote) != std::string_view::npos)
        Reject(std::string(dialect.name) + " cannot hold a name with a quote in it", name);
    std::string quoted(1, forms.openingQuote);
    for (const char letter : name) {
        quoted += letter;
        if (letter == forms.closingQuote)
            quoted += letter;
    }
    return quoted + forms.closingQuote;
}

std::string NameWriter::Write(const amd_id& subject, std::string_view name) const
{
    const NameForms& forms = mDialect->names;
    CheckLength(name);
    if (forms.quotes == NameForms::EQuotes::Always ||
        FindWriting(subject, name) == EWritten::Quoted)
        return QuoteIdentifier(name, *mDialect);
    return NeedsQuotes(name)
               ? QuoteIdentifier(FoldName(std::string(name), forms.folding), *mDialect)
               : std::string(name);
}

std::string NameWriter::WriteAlias(std::string_view alias) const
{
    if (mDialect->names.quotes == NameForms::EQuotes::WhereNeeded && !NeedsQuotes(alias))
        return std::string(alias);
    std::string name(alias);
    if (mDialect->names.innerQuote == NameForms::EInnerQuote::None)
        std::replace(name.begin(), name.end(), mDialect->names.closingQuote, '\'');
    return QuoteIdentifier(name, *mDialect);
}

/// A name that its own dialect would not fold to itself, or that means something else there, must
/// have stood between quotes. Where the dialect is not known, small letters are taken for a name
/// without quotes.
EWritten NameWriter::FindWriting(const amd_id& subject, std::string_view name) const
{
    const EFolding folding =
        mWritten->dialect == nullptr ? EFolding::Lower : mWritten->dialect->names.folding;
    const bool isReserved =
        mWritten->dialect != nullptr && IsReserved(name, mWritten->dialect->names);
    const bool isPlain = CanBePlain(name) && !isReserved && !mWritten->IsQuoted(subject, name) &&
                         FoldName(std::string(name), folding) == name;
    return isPlain ? EWritten::Plain : EWritten::Quoted;
}

bool NameWriter::NeedsQuotes(std::string_view name) const
{
    const NameForms& forms = mDialect->names;
    if (!IsPlain(name) || (name.front() == '_' && !forms.mayBeginWithUnderscore))
        return true;
    return IsReserved(name, forms);
}

/// A database cuts or refuses the names of its own tables when they are made.
void NameWriter::CheckLength(std::string_view name) const
{
    const NameLimit& limit = mDialect->names.names;
    if (limit.size == 0 || !IsForeign() || Measure(name, limit.unit) <= limit.size)
        return;
    Reject(std::string(mDialect->name) + " has no names of more than " +
               std::to_string(limit.size) +
               (limit.unit == NameLimit::EUnit::Bytes ? " bytes" : " characters"),
           name);
}

std::string AliasNames::Take(std::string_view wanted)
{
    // As many bytes have no more characters.
    const std::size_t limit = mDialect->names.aliases.size == 0
                                  ? std::numeric_limits<std::size_t>::max()
                                  : mDialect->names.aliases.size;
    std::string name(CutUtf8(wanted, limit));
    for (int number = 2; !mTaken.insert(model::FoldCase(name)).second; ++number) {
        const std::string suffix = ' ' + std::to_string(number);
        name = std::string(CutUtf8(wanted, limit - suffix.size())) + suffix;
    }
    return name;
}

} // namespace qe::tool
