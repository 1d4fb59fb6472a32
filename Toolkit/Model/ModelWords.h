#ifndef TOOLKIT_MODEL_MODELWORDS_H
#define TOOLKIT_MODEL_MODELWORDS_H

#include "Engine/Model/ObjectRecord.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The keys of a model file; Documentation/model-format.md explains them.
namespace qe::tool::keys {

inline constexpr const char* kSchema = "$schema";
inline constexpr const char* kVersion = "version";
inline constexpr const char* kLocale = "locale";
inline constexpr const char* kDialect = "dialect";
inline constexpr const char* kUserClasses = "userClasses";
inline constexpr const char* kHistory = "history";
inline constexpr const char* kGovernors = "governors";
inline constexpr const char* kCrossProductAllowed = "crossProductAllowed";
inline constexpr const char* kShortcutGrouping = "shortcutGrouping";

inline constexpr const char* kSubjects = "subjects";
inline constexpr const char* kShortcuts = "shortcuts";
inline constexpr const char* kRelationships = "relationships";
inline constexpr const char* kRelationshipShortcuts = "relationshipShortcuts";
inline constexpr const char* kFilters = "filters";
inline constexpr const char* kFolders = "folders";
inline constexpr const char* kNamespaces = "namespaces";
inline constexpr const char* kQuery = "query";
inline constexpr const char* kJoins = "joins";

inline constexpr const char* kDecisions = "decisions";
inline constexpr const char* kPrefer = "prefer";
inline constexpr const char* kAvoid = "avoid";
inline constexpr const char* kReason = "reason";
inline constexpr const char* kAcceptedFindings = "acceptedFindings";

inline constexpr const char* kName = "name";
inline constexpr const char* kId = "id";
inline constexpr const char* kClass = "class";
inline constexpr const char* kDisplayName = "displayName";
inline constexpr const char* kDescription = "description";
inline constexpr const char* kTable = "table";
inline constexpr const char* kQuoted = "quoted";
inline constexpr const char* kRows = "rows";
inline constexpr const char* kItems = "items";
inline constexpr const char* kKeys = "keys";
inline constexpr const char* kKind = "kind";
inline constexpr const char* kTarget = "target";
inline constexpr const char* kLeft = "left";
inline constexpr const char* kRight = "right";
inline constexpr const char* kLeftCardinality = "leftCardinality";
inline constexpr const char* kRightCardinality = "rightCardinality";
inline constexpr const char* kCondition = "condition";

} // namespace qe::tool::keys

namespace qe::tool {

/// The words that stand for numbers in model files.

/// Returns the range that "0..1", "1..1", "0..n" or "1..n" means.
[[nodiscard]] std::optional<model::CardinalityRange> ParseCardinality(std::string_view word);
/// Returns the word for a range; nothing for a range that has none.
[[nodiscard]] std::optional<std::string> CardinalityWord(const model::CardinalityRange& range);
/// Returns all words for ranges.
[[nodiscard]] std::vector<std::string_view> CardinalityWords();

/// A governor's words: the position of each is its value.
using GovernorWords = std::vector<std::string_view>;
/// What happens when query subjects cannot be joined: allow, warn, deny.
[[nodiscard]] const GovernorWords& CrossProductWords();
/// How shortcuts are grouped: by target or by place.
[[nodiscard]] const GovernorWords& ShortcutGroupingWords();

} // namespace qe::tool

#endif
