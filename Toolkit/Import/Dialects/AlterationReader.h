#ifndef TOOLKIT_IMPORT_DIALECTS_ALTERATIONREADER_H
#define TOOLKIT_IMPORT_DIALECTS_ALTERATIONREADER_H

#include "Toolkit/Import/Ddl/Catalogue.h"
#include "Toolkit/Import/Dialects/TokenCursor.h"

namespace qe::tool {

/// Reads what an ALTER TABLE changes into a catalogue.
class AlterationReader
{
public:
    /// Refers to the catalogue.
    AlterationReader(Catalogue& catalogue, const ScriptPlace& place)
        : mCatalogue(&catalogue), mPlace(place)
    {}

    /// Reads a whole statement. Throws an UnreadableElement; what was read before counts.
    void Read(TokenCursor cursor);

private:
    /// Reads the actions between two commas.
    void ReadPiece(TokenCursor piece);
    void ReadAction(TokenCursor& piece);
    void ReadAdd(TokenCursor& piece);
    void ReadElements(TokenCursor& piece);
    void ReadDrop(TokenCursor& piece);
    void ReadDropColumn(TokenCursor& piece);
    void ReadModify(TokenCursor& piece);
    void ReadNewDefinition(TokenCursor& definition, const std::string& name);
    void ReadChange(TokenCursor& piece);
    void ReadAlterColumn(TokenCursor& piece);
    void ReadRename(TokenCursor& piece);
    void Alter(const Alteration& change) { mCatalogue->Alter(mTable, change, mPlace); }

    Catalogue* mCatalogue;
    ScriptPlace mPlace;
    ObjectName mTable{};
    /// Whether a piece without a verb goes on with the elements or columns of the one before.
    enum class EContinued
    {
        Nothing,
        Elements,
        DroppedColumns,
        DroppedKeys,
    } mContinued = EContinued::Nothing;
};

} // namespace qe::tool

#endif
