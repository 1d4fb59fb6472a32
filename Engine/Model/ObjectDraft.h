#ifndef ENGINE_MODEL_OBJECTDRAFT_H
#define ENGINE_MODEL_OBJECTDRAFT_H

#include "Engine/Model/ObjectRecord.h"
#include "amd_id.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace qe::model {

/// Names another object of the model: by its id, or by name as people write it ("Orders",
/// "Sales.Orders"; see Model::FindByName). Of several objects that a name fits, the one in the
/// namespace of the object that refers to it is meant. The default reference names nothing.
class Reference
{
public:
    Reference() = default;
    Reference(const amd_id& id) : mId(id) {}
    Reference(std::string name) : mName(std::move(name)) {}
    Reference(const char* name) : mName(name) {}

    [[nodiscard]] bool IsEmpty() const { return mId == amd_id() && mName.empty(); }
    [[nodiscard]] bool IsByName() const { return !mName.empty(); }
    [[nodiscard]] const amd_id& GetId() const { return mId; }
    [[nodiscard]] const std::string& GetName() const { return mName; }

private:
    amd_id mId;
    std::string mName;
};

/// The place of a reference that names nothing: the top of the model.
inline const Reference kTop{};

/// What a shortcut or join refers to.
struct DraftLinks
{
    Reference referenced{};
    Reference left{};
    Reference right{};
};

/// An object as it was added: its references are not followed yet.
struct ObjectDraft
{
    /// Everything but parent, space, referenced and the ends.
    ObjectRecord record{};
    /// The class it was added as; an id that was asked for may have another.
    std::int32_t classCode = 0;
    std::int64_t tag = 0;
    Reference parent{};
    /// Null but for shortcuts and joins: most objects are items, and these should be small.
    std::unique_ptr<DraftLinks> links{};
};

/// A draft while its model is put together.
struct PlacedDraft
{
    const ObjectDraft* draft = nullptr;
    /// What is known of the object so far: first what the draft says.
    ObjectRecord* record = nullptr;
    /// Whether the record is part of the model's table: it is the first with a right id.
    bool isInTable = false;
};

} // namespace qe::model

#endif
