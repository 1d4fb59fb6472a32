#ifndef TOOLKIT_MODEL_MODELKEYS_H
#define TOOLKIT_MODEL_MODELKEYS_H

/// The words of a model file; Documentation/model-format.md explains them.
namespace qe::tool::keys {

inline constexpr const char* Schema = "$schema";
inline constexpr const char* Version = "version";
inline constexpr const char* Locale = "locale";
inline constexpr const char* UserClasses = "userClasses";
inline constexpr const char* Governors = "governors";
inline constexpr const char* CrossProductAllowed = "crossProductAllowed";
inline constexpr const char* ShortcutGrouping = "shortcutGrouping";

inline constexpr const char* Subjects = "subjects";
inline constexpr const char* Shortcuts = "shortcuts";
inline constexpr const char* Relationships = "relationships";
inline constexpr const char* RelationshipShortcuts = "relationshipShortcuts";
inline constexpr const char* Filters = "filters";
inline constexpr const char* Folders = "folders";
inline constexpr const char* Namespaces = "namespaces";
inline constexpr const char* Query = "query";
inline constexpr const char* Joins = "joins";

inline constexpr const char* Name = "name";
inline constexpr const char* Id = "id";
inline constexpr const char* Class = "class";
inline constexpr const char* DisplayName = "displayName";
inline constexpr const char* Table = "table";
inline constexpr const char* Items = "items";
inline constexpr const char* Kind = "kind";
inline constexpr const char* Target = "target";
inline constexpr const char* Left = "left";
inline constexpr const char* Right = "right";
inline constexpr const char* LeftCardinality = "leftCardinality";
inline constexpr const char* RightCardinality = "rightCardinality";
inline constexpr const char* Condition = "condition";

} // namespace qe::tool::keys

#endif
