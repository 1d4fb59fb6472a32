#ifndef INCLUDE_TYPES_IDCLASS_H
#define INCLUDE_TYPES_IDCLASS_H

#include <cstdint>

/// The class codes of metadata objects that the refiner distinguishes. The metadata layer fixes
/// the numbers.
enum IdClass : std::int32_t
{
    /// A folder, the parent of model objects.
    IdClassFolder = 99,
    /// A table, view or model object that a query reads.
    IdClassQuerySubject = 100,
    /// A column of a query subject.
    IdClassQueryItem = 101,
    /// A model join between two query subjects or shortcuts.
    IdClassRelationship = 102,
    /// An object that stands for another one, usually a query subject.
    IdClassShortcut = 109,
    /// An object that stands for a relationship, with ends of its own.
    IdClassRelationshipShortcut = 110,
    /// A model filter.
    IdClassFilter = 114,
    /// A relationship of the second kind: the sort of join that weighs least.
    IdClassRelationship136 = 136,
    /// A join that the query itself defines.
    IdClassSpecJoin = 300005,
    /// A filter that the query itself defines.
    IdClassSpecFilter = 300020,
    /// A synthetic join between a shortcut and what it stands for; unknown to the gateway.
    IdClassShortcutJoin = 700001,
};

#endif
