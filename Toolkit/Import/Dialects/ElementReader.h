#ifndef TOOLKIT_IMPORT_DIALECTS_ELEMENTREADER_H
#define TOOLKIT_IMPORT_DIALECTS_ELEMENTREADER_H

#include "Toolkit/Import/Ddl/Declarations.h"
#include "Toolkit/Import/Dialects/TokenCursor.h"

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace qe::tool {

/// What looks like a table or key and cannot be read.
class UnreadableElement : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Reads the elements of a table, columns with their constraints and constraints of the table, into
/// a declaration. What says nothing on keys, such as types and checks, is passed over.
class ElementReader
{
public:
    /// Refers to the declaration.
    explicit ElementReader(TableDeclaration& table) : mTable(&table) {}

    /// Reads the elements between commas. Throws an UnreadableElement.
    void ReadAll(const TokenCursor& elements);
    /// Reads one element. Goes on behind what it can tell to be part of it. Throws an
    /// UnreadableElement.
    void Read(TokenCursor& cursor);
    /// Reads what follows the name of a column, and adds the column. Throws an UnreadableElement.
    void ReadColumn(TokenCursor& cursor, const std::string& name);

private:
    /// Reads a constraint of the table, if one comes next. Returns whether it did.
    bool ReadConstraint(TokenCursor& cursor, const std::string& name);
    bool ReadKey(TokenCursor& cursor, const std::string& name);
    void ReadForeignKey(TokenCursor& cursor, const std::string& name);
    /// Reads what an attribute of a column says, if one comes next. Returns whether it did.
    bool ReadAttribute(TokenCursor& cursor, SchemaColumn& column);
    bool ReadColumnKey(TokenCursor& cursor, const std::string& column);
    void ReadType(TokenCursor& cursor, SchemaColumn& column);
    /// Reads what follows REFERENCES.
    void ReadReference(TokenCursor& cursor, ForeignKeyDeclaration key);
    /// Reads an index among the elements. Returns false when the element is none.
    bool ReadIndex(TokenCursor& cursor);
    void AddKey(const KeyDeclaration& key, const TokenCursor& columns);
    /// Returns the columns of a key; nothing when it is not over whole columns.
    [[nodiscard]] std::optional<std::vector<std::string>>
    ReadKeyColumns(const TokenCursor& columns) const;

    TableDeclaration* mTable;
    /// The declared lengths of columns, as they are written.
    std::map<std::string, std::string> mLengths;
    /// The name of the constraint of a column that is being read.
    std::string mConstraintName;
};

} // namespace qe::tool

#endif
