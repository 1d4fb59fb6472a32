#ifndef TOOLKIT_MODEL_CONTENTREADER_H
#define TOOLKIT_MODEL_CONTENTREADER_H

#include "Toolkit/Model/ModelContent.h"
#include "Toolkit/Model/ModelWords.h"
#include "Toolkit/Text/JsonObject.h"
#include "Toolkit/Text/JsonProblems.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

namespace qe::tool {

/// Reads the document of a model file: keys, types, words and ids. What the objects name is not
/// looked up yet.
///
/// Of the children of one object, subjects (with their items), shortcuts, relationships,
/// relationship shortcuts and filters come first, then folders, then namespaces, whatever the order
/// of the keys.
class ContentReader
{
public:
    explicit ContentReader(JsonProblems& problems) : mProblems(&problems) {}

    /// Returns the content of the document; mistakes are added to the problems. Call it once.
    [[nodiscard]] ModelContent Read(const nlohmann::json& document);

private:
    void ReadVersion(JsonObject& top);
    void ReadGovernors(const PlacedJson& json);
    /// Replaces `value` by what a word stands for, or by a number.
    void ReadGovernor(const PlacedJson& json, const GovernorWords& words, std::int32_t& value);
    void ReadQuery(const PlacedJson& json);
    /// Reads the children of the namespace, folder or document.
    void ReadChildren(JsonObject& parent, std::size_t position);

    void ReadContainer(const PlacedJson& json, std::int32_t classCode, std::size_t parent);
    void ReadSubject(const PlacedJson& json, std::size_t parent);
    void ReadShortcut(const PlacedJson& json, std::size_t parent);
    void ReadJoin(const PlacedJson& json, std::int32_t classCode, std::size_t parent);
    void ReadRelationship(const PlacedJson& json, std::size_t parent);
    void ReadRelationshipShortcut(const PlacedJson& json, std::size_t parent);
    void ReadFilter(const PlacedJson& json, std::int32_t classCode, std::size_t parent);

    /// Reads an object that may be written as its mere name. Returns whether it was.
    [[nodiscard]] bool ReadPlainName(const PlacedJson& json, std::int32_t classCode,
                                     std::size_t parent);
    /// Starts an object with what every object has. Returns its position.
    std::size_t Add(JsonObject& json, std::int32_t classCode, std::size_t parent);

    JsonProblems* mProblems;
    ModelContent mContent;
    /// The ids in the file, with the pointers to the objects that have them.
    std::map<amd_id, std::string> mIdOwners;
};

} // namespace qe::tool

#endif
