#ifndef ENGINE_MODEL_REFERENCEFINDER_H
#define ENGINE_MODEL_REFERENCEFINDER_H

#include "Engine/Model/ModelError.h"
#include "Engine/Model/NameLookup.h"
#include "Engine/Model/ObjectDraft.h"
#include "Engine/Model/ObjectRecord.h"
#include "Engine/Model/ProblemList.h"

#include <cstddef>
#include <vector>

namespace qe::model {

/// Finds the objects that drafts refer to. Refers to the table and the list of problems.
class ReferenceFinder
{
public:
    /// What a reference is for, and the kinds of names among which it is looked for; the first kind
    /// that has it wins.
    struct Wanted
    {
        EAspect aspect;
        std::vector<ENameKind> nameKinds;
    };

    /// Takes the kinds of names among which things are looked for.
    ReferenceFinder(const ObjectTable& table, const std::vector<ENameKind>& nameKinds,
                    ProblemList& problems)
        : mTable(&table), mNames(table, nameKinds), mProblems(&problems)
    {}

    /// Returns the id of the object, or the empty id when there is not exactly one; then the
    /// problem is added. A missing parent is none.
    [[nodiscard]] amd_id Find(std::size_t position, const PlacedDraft& draft,
                              const Reference& reference, const Wanted& wanted);

    /// Does the same without adding problems.
    [[nodiscard]] amd_id TryFind(const PlacedDraft& draft, const Reference& reference,
                                 const std::vector<ENameKind>& nameKinds) const;

private:
    [[nodiscard]] std::vector<amd_id> Match(const PlacedDraft& draft, const std::string& name,
                                            const std::vector<ENameKind>& nameKinds) const;
    [[nodiscard]] bool NamesItself(const PlacedDraft& draft, const std::string& name,
                                   const std::vector<ENameKind>& nameKinds) const;
    [[nodiscard]] std::vector<std::string> Suggest(const std::string& name,
                                                   const std::vector<ENameKind>& nameKinds);

    const ObjectTable* mTable;
    NameLookup mNames;
    ProblemList* mProblems;
    int mSuggestions = 0;
};

} // namespace qe::model

#endif
