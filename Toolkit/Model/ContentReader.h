#ifndef TOOLKIT_MODEL_CONTENTREADER_H
#define TOOLKIT_MODEL_CONTENTREADER_H

#include "Toolkit/Model/ModelContent.h"
#include "Toolkit/Text/FileProblems.h"
#include "Toolkit/Text/JsonObject.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace qe::tool {

/// Reads the document of a model file: keys, types, words and ids. What the objects name is not
/// looked up yet.
///
/// Within a holder, what it holds itself comes first (subjects with their items, shortcuts,
/// relationships, relationship shortcuts, filters), then its folders, then its namespaces,
/// whatever the order of the keys.
class ContentReader
{
public:
    explicit ContentReader(FileProblems& problems) : mProblems(&problems) {}

    [[nodiscard]] ModelContent Read(const nlohmann::json& document);

private:
    void ReadVersion(JsonObject& top);
    void ReadGovernors(const PlacedJson& json);
    void ReadGovernor(const PlacedJson& json, const std::vector<std::string_view>& words,
                      std::int32_t& value);
    void ReadQuery(const PlacedJson& json);
    /// Reads what the namespace, folder or document holds.
    void ReadHeld(JsonObject& holder, std::size_t position);

    void ReadContainer(const PlacedJson& json, std::int32_t classCode, std::size_t holder);
    void ReadSubject(const PlacedJson& json, std::size_t holder);
    void ReadShortcut(const PlacedJson& json, std::size_t holder);
    void ReadJoin(const PlacedJson& json, std::int32_t classCode, std::size_t holder);
    void ReadRelationship(const PlacedJson& json, std::size_t holder);
    void ReadRelationshipShortcut(const PlacedJson& json, std::size_t holder);
    void ReadFilter(const PlacedJson& json, std::int32_t classCode, std::size_t holder);

    /// Reads an object that may be written as its mere name. Gives whether it was.
    [[nodiscard]] bool ReadPlainName(const PlacedJson& json, std::int32_t classCode,
                                     std::size_t holder);
    /// Starts an object with what every object has. Gives its position.
    std::size_t Add(JsonObject& json, std::int32_t classCode, std::size_t holder);
    void ReadJoinParts(JsonObject& json, ContentObject& join);
    [[nodiscard]] model::Reference ReadReference(JsonObject& json, const char* key);
    [[nodiscard]] model::Reference ReadIdReference(const PlacedJson& json);
    [[nodiscard]] model::CardinalityRange ReadCardinality(JsonObject& json, const char* key);
    /// Reads an id of that class; empty when there is none.
    [[nodiscard]] amd_id ReadId(const PlacedJson& json, std::int32_t classCode);
    /// Reads a list of two numbers. Gives whether it is one.
    [[nodiscard]] bool ReadPair(const PlacedJson& json, std::int32_t& first, std::int32_t& second);

    FileProblems* mProblems;
    ModelContent mContent;
    /// The ids that the file gives, with the objects that have them.
    std::map<amd_id, std::string> mIdOwners;
};

} // namespace qe::tool

#endif
