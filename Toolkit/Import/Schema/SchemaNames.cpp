#include "Toolkit/Import/Schema/SchemaNames.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

/// The titles of one kind, and those that are taken.
class Titles
{
public:
    /// Returns the title, or the nearest one like it that is free.
    std::string Take(const std::string& title)
    {
        std::string free = title;
        for (int number = 2; !mTaken.insert(ascii::ToLower(free)).second; ++number)
            free = title + " (" + std::to_string(number) + ")";
        return free;
    }

    [[nodiscard]] bool IsFree(const std::string& title) const
    {
        return mTaken.count(ascii::ToLower(title)) == 0;
    }

private:
    std::set<std::string> mTaken;
};

/// Returns the name with bytes that are no UTF-8 written as escapes.
std::string ToValidText(std::string_view name)
{
    std::string text;
    while (!name.empty()) {
        const Utf8Piece piece = ReadUtf8(name);
        const std::string_view bytes = name.substr(0, piece.bytes);
        text += piece.isWellFormed ? std::string(bytes) : ToDisplayText(bytes);
        name.remove_prefix(piece.bytes);
    }
    return text;
}

/// Returns the name, made valid, or what stands for it when it is empty.
std::string Repair(const std::string& name, const char* kind, std::size_t position)
{
    return name.empty() ? std::string(kind) + ' ' + std::to_string(position + 1)
                        : ToValidText(name);
}

void Note(DatabaseSchema& schema, const std::string& what, const std::string& title)
{
    schema.notes.push_back("renamed " + what + ": it is called \"" + title + '"');
}

bool HoldsZero(const std::string& text)
{
    return text.find('\0') != std::string::npos;
}

void ReplaceZeros(std::string& description, const std::string& name, DatabaseSchema& schema)
{
    if (!HoldsZero(description))
        return;
    for (std::size_t at = 0; (at = description.find('\0', at)) != std::string::npos;)
        description.replace(at, 1, "\uFFFD");
    schema.notes.push_back("the description of " + name + " holds the character U+0000");
}

/// The names of one schema that hold U+0000.
class ZeroFinder
{
public:
    void Check(const std::string& name, const char* kind)
    {
        if (HoldsZero(name))
            mFound.push_back({.place = ToDisplayText(name),
                              .text = std::string("the name of ") + kind +
                                      " must not hold the character U+0000"});
    }

    void CheckTable(const SchemaTable& table)
    {
        Check(table.name, "a table");
        Check(table.space, "a schema");
        for (const std::string& part : table.source)
            if (part != table.name && part != table.space)
                Check(part, "a table or schema");
        for (const SchemaColumn& column : table.columns)
            Check(column.name, "a column");
    }

    void ThrowIfAny()
    {
        if (!mFound.empty())
            throw InputError(std::move(mFound));
    }

private:
    std::vector<InputProblem> mFound;
};

void GiveColumnTitles(SchemaTable& table, DatabaseSchema& schema)
{
    Titles titles;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        SchemaColumn& column = table.columns[i];
        column.title = titles.Take(Repair(column.name, "column", i));
        if (column.title != column.name)
            Note(schema, "a column of " + table.title, column.title);
    }
}

} // namespace

void RequireNoZeros(DatabaseSchema& schema)
{
    ZeroFinder zeros;
    zeros.Check(schema.name, "a database");
    for (SchemaTable& table : schema.tables) {
        zeros.CheckTable(table);
        ReplaceZeros(table.description, table.name, schema);
        for (SchemaColumn& column : table.columns)
            ReplaceZeros(column.description, table.name + '.' + column.name, schema);
    }
    for (SchemaJoin& join : schema.joins) {
        zeros.Check(join.name, "a join");
        ReplaceZeros(join.description, join.name, schema);
    }
    zeros.ThrowIfAny();
}

void GiveTitles(DatabaseSchema& schema)
{
    Titles titles;
    for (std::size_t i = 0; i < schema.tables.size(); ++i) {
        SchemaTable& table = schema.tables[i];
        std::string title = Repair(table.name, "table", i);
        const bool isShared = !titles.IsFree(title);
        if (isShared && !table.space.empty())
            title.insert(0, ToValidText(table.space) + '.');
        table.title = titles.Take(title);
        if (isShared)
            Note(schema, "a table whose name another one has", table.title);
        else if (table.title != table.name)
            Note(schema, "a table whose name is empty or not UTF-8", table.title);
        GiveColumnTitles(table, schema);
    }
}

} // namespace qe::tool
