#ifndef ENGINE_MODEL_REFERENCEFINDER_H
#define ENGINE_MODEL_REFERENCEFINDER_H

#include "Engine/Model/ModelError.h"
#include "Engine/Model/NameLookup.h"
#include "Engine/Model/ObjectDraft.h"
#include "Engine/Model/ObjectRecord.h"
#include "Engine/Model/ProblemList.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
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

    /// Takes the kinds of names among which things are looked for. As soon as the first one is, the
    /// table's names and namespaces must be known and stay.
    ReferenceFinder(const ObjectTable& table, std::vector<ENameKind> nameKinds,
                    ProblemList& problems)
        : mTable(&table), mNameKinds(std::move(nameKinds)), mProblems(&problems)
    {}

    /// Returns the id of the object, or the empty id when there is not exactly one; then the
    /// problem is added. A missing parent is none.
    [[nodiscard]] amd_id Find(std::size_t position, const PlacedDraft& draft,
                              const Reference& reference, const Wanted& wanted);

    /// Does the same without adding problems.
    [[nodiscard]] amd_id TryFind(const PlacedDraft& draft, const Reference& reference,
                                 const std::vector<ENameKind>& nameKinds);

private:
    /// Most models refer by ids alone, and need no index of names.
    [[nodiscard]] const NameLookup& GetNames();
    [[nodiscard]] std::vector<amd_id> Match(const PlacedDraft& draft, const std::string& name,
                                            const std::vector<ENameKind>& nameKinds);
    [[nodiscard]] bool NamesItself(const PlacedDraft& draft, const std::string& name,
                                   const std::vector<ENameKind>& nameKinds);
    [[nodiscard]] std::vector<std::string> Suggest(const std::string& name,
                                                   const std::vector<ENameKind>& nameKinds);

    const ObjectTable* mTable;
    std::vector<ENameKind> mNameKinds;
    std::optional<NameLookup> mNames;
    ProblemList* mProblems;
    int mSuggestions = 0;
};

} // namespace qe::model

#endif
