#ifndef TOOLKIT_IMPORT_POSTGRESQL_POSTGRESTREE_H
#define TOOLKIT_IMPORT_POSTGRESQL_POSTGRESTREE_H

#include "Toolkit/Import/Ddl/Catalogue.h"
#include "Toolkit/Import/Ddl/ReadingNotes.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <utility>

namespace qe::tool {

/// Reads the tree of a statement into a catalogue, as far as it speaks of tables and keys.
class PostgresTree
{
public:
    /// Refers to the catalogue and the notes. The tree does not say which names stood between
    /// quotes.
    PostgresTree(Catalogue& catalogue, ReadingNotes& notes, const ScriptPlace& place,
                 NameSet quotedNames)
        : mCatalogue(&catalogue), mNotes(&notes), mPlace(place), mQuoted(std::move(quotedNames))
    {}

    /// Returns whether the statement says anything on tables and keys.
    bool Read(const nlohmann::json& statement);

private:
    using Node = nlohmann::json;

    void ReadTable(const Node& node);
    void ReadQueryTable(const Node& node);
    void ReadSchema(const Node& node);
    void ReadAlteration(const Node& node);
    void ReadCommand(const ObjectName& table, const Node& command);
    void ReadIndex(const Node& node);
    void ReadComment(const Node& node);
    void ReadDrop(const Node& node);
    void ReadRename(const Node& node);
    void ReadMove(const Node& node);
    void ReadSetting(const Node& node);
    void ReadQuery(const Node& node);

    void AddElement(const Node& element, TableDeclaration& table) const;
    void AddColumn(const Node& column, TableDeclaration& table) const;
    /// Adds a constraint of the table, or of the column of that name.
    static void AddConstraint(const Node& constraint, const std::string& column,
                              TableDeclaration& table);
    /// Returns the name with those of its parts that stood between quotes.
    [[nodiscard]] ObjectName MarkQuoted(ObjectName name) const;
    void SetSearchPath(const std::vector<std::string>& schemas);

    Catalogue* mCatalogue;
    ReadingNotes* mNotes;
    ScriptPlace mPlace;
    NameSet mQuoted;
};

} // namespace qe::tool

#endif
