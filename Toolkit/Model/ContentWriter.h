#ifndef TOOLKIT_MODEL_CONTENTWRITER_H
#define TOOLKIT_MODEL_CONTENTWRITER_H

#include "Engine/Model/Model.h"
#include "Toolkit/Model/ToolModel.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <map>
#include <vector>

namespace qe::tool {

/// Makes the document of a model file from a model. Ids are written only where reading would assign
/// others; references by the shortest name that leads back to the object, by id where none does.
/// Refers to the model.
class ContentWriter
{
public:
    explicit ContentWriter(const ToolModel& model) : mTool(&model), mModel(model.model.get()) {}

    /// Call it once.
    [[nodiscard]] nlohmann::ordered_json Write();

private:
    using Record = model::ObjectRecord;

    /// Adds the children of an object, in the order in which they are read.
    void WriteChildren(const amd_id& parent, nlohmann::ordered_json& json);
    /// Adds a list with the objects of those classes, unless there are none.
    void WriteList(const char* key, const std::vector<amd_id>& ids, nlohmann::ordered_json& json);
    void WriteQuery(nlohmann::ordered_json& json);
    void WriteGovernors(nlohmann::ordered_json& json) const;

    [[nodiscard]] nlohmann::ordered_json WriteObject(const Record& record);
    void WriteSubject(const Record& record, nlohmann::ordered_json& json);
    void WriteQuotedNames(const Record& record, nlohmann::ordered_json& json) const;
    void WriteJoin(const Record& record, nlohmann::ordered_json& json) const;
    [[nodiscard]] nlohmann::ordered_json WriteReference(const Record& from, const amd_id& to) const;
    [[nodiscard]] bool LeadsTo(const Record& from, const amd_id& to,
                               const model::QualifiedName& name) const;
    /// Returns what is to be written as the object's id: null where reading would assign the same.
    [[nodiscard]] nlohmann::ordered_json WriteId(const amd_id& id);

    const ToolModel* mTool;
    const model::Model* mModel;
    /// The last numbers that reading assigns by itself, for each class.
    std::map<std::int32_t, std::int32_t> mLastNumbers;
};

} // namespace qe::tool

#endif
