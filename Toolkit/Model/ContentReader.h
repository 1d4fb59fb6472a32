#ifndef TOOLKIT_MODEL_CONTENTREADER_H
#define TOOLKIT_MODEL_CONTENTREADER_H

#include "AQE_Governors.h"
#include "Engine/Model/ModelBuilder.h"
#include "Toolkit/Model/Decision.h"
#include "Toolkit/Model/ModelWords.h"
#include "Toolkit/Text/JsonObject.h"
#include "Toolkit/Text/JsonProblems.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace qe::tool {

/// One object as a model file describes it. Fields that its class does not use keep their
/// defaults.
struct ContentObject
{
    static constexpr std::size_t kNoParent = static_cast<std::size_t>(-1);

    std::int32_t classCode = 0;
    /// Where the file describes it.
    std::string pointer{};
    /// Whether its name is all that the file says of it.
    bool isPlainName = false;
    /// The position of its parent, which comes before it.
    std::size_t parent = kNoParent;
    std::string name{};
    std::string description{};
    std::optional<std::uint64_t> rows{};
    model::ObjectOptions options{};
    model::Reference target{};
    std::int32_t kind = 0;
    model::JoinEnd left{};
    model::JoinEnd right{};
    std::string condition{};
};

/// A reference and where the file has it.
struct PlacedReference
{
    model::Reference reference{};
    std::string pointer{};
};

/// A decision as a model file describes it.
struct ContentDecision
{
    std::string pointer{};
    std::vector<PlacedReference> subjects{};
    std::vector<PlacedReference> preferred{};
    std::vector<PlacedReference> avoided{};
    std::string reason{};
};

/// The content of a model file, before names are looked up.
struct ModelContent
{
    std::string locale = "en";
    std::vector<std::string> userClasses{};
    std::vector<std::string> histories{};
    AQE_Governors governors{};
    std::vector<ContentDecision> decisions{};
    std::vector<AcceptedFinding> acceptedFindings{};
    /// There are many, and they are large: a deque never moves them.
    std::deque<ContentObject> objects{};
};

/// The values of model files that can be written in more than one form. What is missing or wrong is
/// reported.

/// Returns what a key refers to: by name, or by class and id. Empty when it refers to nothing.
[[nodiscard]] model::Reference ReadReference(JsonObject& json, const char* key,
                                             JsonProblems& problems);

/// Returns the references in the list of a key.
[[nodiscard]] std::vector<PlacedReference> ReadReferences(JsonObject& json, const char* key,
                                                          JsonProblems& problems);

/// Returns the cardinality of a key: a word such as "0..n", or a list of two numbers.
[[nodiscard]] model::CardinalityRange ReadCardinality(JsonObject& json, const char* key,
                                                      JsonProblems& problems);

/// Returns an id of that class: a number, or a list of domain and number. Empty when there is none;
/// `json` may be without a value.
[[nodiscard]] amd_id ReadId(const PlacedJson& json, std::int32_t classCode, JsonProblems& problems);

/// Returns an accepted finding: its id and the reason.
[[nodiscard]] AcceptedFinding ReadAcceptedFinding(const PlacedJson& json, JsonProblems& problems);

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
    void ReadDecision(const PlacedJson& json);
    /// Reads the children of the namespace, folder or document.
    void ReadChildren(JsonObject& parent, std::size_t position);

    void ReadContainer(const PlacedJson& json, std::int32_t classCode, std::size_t parent);
    void ReadSubject(const PlacedJson& json, std::size_t parent);
    /// Items are read already.
    void ReadKey(const PlacedJson& json, std::size_t subject);
    void ReadShortcut(const PlacedJson& json, std::size_t parent);
    void ReadJoin(const PlacedJson& json, std::int32_t classCode, std::size_t parent);
    void ReadRelationship(const PlacedJson& json, std::size_t parent);
    void ReadRelationshipShortcut(const PlacedJson& json, std::size_t parent);
    void ReadFilter(const PlacedJson& json, std::int32_t classCode, std::size_t parent);

    /// Reads an object that may be written as its mere name. Returns whether it was.
    [[nodiscard]] bool ReadPlainName(const PlacedJson& json, std::int32_t classCode,
                                     std::size_t parent);
    /// Refuses and removes the id of an object when an earlier one has it.
    void RecordId(ContentObject& object);
    /// Starts an object with what every object has. Returns its position.
    std::size_t Add(JsonObject& json, std::int32_t classCode, std::size_t parent);

    JsonProblems* mProblems;
    ModelContent mContent;
    /// The ids in the file, with the pointers to the objects that have them.
    std::map<amd_id, std::string> mIdOwners;
};

} // namespace qe::tool

#endif
