#include "Engine/Model/ObjectRecord.h"

namespace qe::model {

std::string_view ClassTitle(std::int32_t classCode)
{
    switch (classCode) {
    case IdClassFolder:
        return "folder";
    case IdClassNamespace:
        return "namespace";
    case IdClassQuerySubject:
        return "query subject";
    case IdClassQueryItem:
        return "item";
    case IdClassRelationship:
    case IdClassRelationship136:
        return "relationship";
    case IdClassShortcut:
        return "shortcut";
    case IdClassRelationshipShortcut:
        return "relationship shortcut";
    case IdClassFilter:
        return "filter";
    case IdClassSpecJoin:
        return "join of the query";
    case IdClassSpecFilter:
        return "filter of the query";
    default:
        return "object";
    }
}

} // namespace qe::model
