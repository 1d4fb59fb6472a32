#ifndef TOOLKIT_IMPORT_DIALECTS_ELEMENTREADER_H
#define TOOLKIT_IMPORT_DIALECTS_ELEMENTREADER_H

#include "Toolkit/Import/Ddl/Catalogue.h"
#include "Toolkit/Import/Ddl/Declarations.h"
#include "Toolkit/Import/Dialects/TokenCursor.h"

#include <optional>
#include <stdexcept>
#include <string>

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
    /// Refers to both. The catalogue knows the types of columns.
    ElementReader(TableDeclaration& table, const Catalogue& catalogue)
        : mTable(&table), mCatalogue(&catalogue)
    {}

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
    void ReadType(TokenCursor& cursor, SchemaColumn& column) const;
    /// Reads what follows REFERENCES.
    void ReadReference(TokenCursor& cursor, ForeignKeyDeclaration key);
    /// Reads an index among the elements. Returns false when the element is none.
    bool ReadIndex(TokenCursor& cursor);
    void AddKey(const KeyDeclaration& key, const std::optional<TokenCursor>& columns);

    TableDeclaration* mTable;
    const Catalogue* mCatalogue;
    /// The name of the constraint of a column that is being read.
    std::string mConstraintName;
};

} // namespace qe::tool

#endif
