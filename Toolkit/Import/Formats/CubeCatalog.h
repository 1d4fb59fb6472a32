#ifndef TOOLKIT_IMPORT_FORMATS_CUBECATALOG_H
#define TOOLKIT_IMPORT_FORMATS_CUBECATALOG_H

#include "Toolkit/Import/Formats/CubeSchema.h"
#include "Toolkit/Import/Formats/LeftOut.h"
#include "Toolkit/Import/Formats/SourceDocument.h"
#include "Toolkit/Import/Formats/SubjectIndex.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qe::tool {

/// The cubes of a model with all that they take over from each other.
class CubeCatalog
{
public:
    /// Reads the documents, to which it refers. What it leaves out is added to `leftOut`.
    CubeCatalog(std::span<SourceDocument> documents, LeftOut& leftOut);

    [[nodiscard]] const std::vector<Cube>& Get() const { return mCubes; }

    /// Returns the position of a cube that stands at a place of a document; one that does not exist
    /// is reported, unless it may be what code would have made.
    [[nodiscard]] std::optional<std::size_t> Find(const std::string& name, SourceDocument& document,
                                                  const std::string& pointer);

private:
    void ReadDocument(SourceDocument& document);
    void TellCode(const SourceDocument& document);
    void ReadCube(SourceDocument& document, const PlacedJson& placed);
    void Inherit(std::size_t position);
    [[nodiscard]] std::vector<std::size_t> FollowChain(std::size_t position);
    void TakeOver(const Cube& from, Cube& into);

    std::vector<Cube> mCubes;
    SubjectIndex mIndex;
    /// Whether there is more than can be read.
    bool mNeedsCode = false;
    std::size_t mInherited = 0;
    LeftOut& mLeftOut;
};

/// Reads the entries of a list that may stand empty.
[[nodiscard]] std::vector<PlacedJson> ReadEntries(JsonObject& object, const char* key,
                                                  JsonProblems& problems);

} // namespace qe::tool

#endif
