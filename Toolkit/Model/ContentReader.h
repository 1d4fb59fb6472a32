#ifndef TOOLKIT_MODEL_CONTENTREADER_H
#define TOOLKIT_MODEL_CONTENTREADER_H

#include "AQE_Governors.h"
#include "Engine/Model/ModelBuilder.h"
#include "Toolkit/Model/ContentValues.h"
#include "Toolkit/Model/Decision.h"
#include "Toolkit/Model/ModelWords.h"
#include "Toolkit/Sql/SqlNames.h"
#include "Toolkit/Text/JsonObject.h"
#include "Toolkit/Text/JsonProblems.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace qe::tool {

/// What joins, shortcuts and filters have beyond other objects. Fields that a class does not use
/// keep their defaults.
struct ContentLinks
{
    model::Reference target{};
    std::int32_t kind = 0;
    model::JoinEnd left{};
    model::JoinEnd right{};
    std::string condition{};
};

/// What any object may have beside its name.
struct ContentDetails
{
    std::string description{};
    /// Names of a query subject's table and items that were written between quotes.
    NameSet quoted{};
    std::optional<std::uint64_t> rows{};
    model::ObjectOptions options{};
};

/// One object as a model file describes it. Fields that its class does not use keep their
/// defaults.
struct ContentObject
{
    static constexpr std::size_t kNoParent = static_cast<std::size_t>(-1);

    std::int32_t classCode = 0;
    /// Whether its name is all that the file says of it.
    bool isPlainName = false;
    /// The position of its parent, which comes before it.
    std::size_t parent = kNoParent;
    /// Where the file describes it; empty for items that are plain names (see PointerTo).
    std::string pointer{};
    std::string name{};
    /// Null for plain names: most objects are such items, and these should be small.
    std::unique_ptr<ContentDetails> details{};
    /// Null for objects that have none.
    std::unique_ptr<ContentLinks> links{};
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
    /// Null where the file names none.
    const SqlDialect* dialect = nullptr;
    std::vector<std::string> userClasses{};
    std::vector<std::string> histories{};
    AQE_Governors governors{};
    std::vector<ContentDecision> decisions{};
    std::vector<AcceptedFinding> acceptedFindings{};
    /// There are many, and they are large: a deque never moves them.
    std::deque<ContentObject> objects{};

    /// Returns where the file describes the object at that position.
    [[nodiscard]] std::string PointerTo(std::size_t position) const;
};

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
    void ReadDialect(const PlacedJson& json);
    void ReadGovernors(const PlacedJson& json);
    /// Replaces `value` by what a word stands for, or by a number.
    void ReadGovernor(const PlacedJson& json, const GovernorWords& words, std::int32_t& value);
    void ReadQuery(const PlacedJson& json);
    void ReadDecision(const PlacedJson& json);
    /// Reads the children of the namespace, folder or document.
    void ReadChildren(JsonObject& parent, std::size_t position);

    void ReadContainer(const PlacedJson& json, std::int32_t classCode, std::size_t parent);
    void ReadSubject(const PlacedJson& json, std::size_t parent);
    /// Reads the list of the items right behind their query subject.
    void ReadItems(const PlacedJson& json, std::size_t subject);
    /// Items are read already.
    void ReadQuotedNames(const PlacedJson& json, std::size_t subject);
    /// Items are read already.
    void ReadKey(const PlacedJson& json, std::size_t subject);
    void ReadShortcut(const PlacedJson& json, std::size_t parent);
    void ReadJoin(const PlacedJson& json, std::int32_t classCode, std::size_t parent);
    void ReadRelationship(const PlacedJson& json, std::size_t parent);
    void ReadRelationshipShortcut(const PlacedJson& json, std::size_t parent);
    void ReadFilter(const PlacedJson& json, std::int32_t classCode, std::size_t parent);

    /// Starts an object of which only the name is known.
    ContentObject& AddPlainName(std::int32_t classCode, std::size_t parent);
    /// Reads an object that may be written as its mere name. Returns whether it was.
    [[nodiscard]] bool ReadPlainName(const PlacedJson& json, std::int32_t classCode,
                                     std::size_t parent);
    /// Refuses and removes the id of an object when an earlier one has it.
    void RecordId(ContentObject& object);
    /// Starts an object with what every object has. Returns its position.
    std::size_t Add(JsonObject& json, std::int32_t classCode, std::size_t parent);
    /// Starts an object that has links, and returns these.
    ContentLinks& AddLinked(JsonObject& json, std::int32_t classCode, std::size_t parent);

    JsonProblems* mProblems;
    ModelContent mContent;
    /// The ids in the file, with the pointers to the objects that have them.
    std::map<amd_id, std::string> mIdOwners;
};

} // namespace qe::tool

#endif
