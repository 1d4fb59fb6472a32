#ifndef TOOLKIT_CHECK_MODELGRAPH_H
#define TOOLKIT_CHECK_MODELGRAPH_H

#include "BMT_I_Association.h"
#include "Engine/Model/ModelGateway.h"
#include "amd_id.h"

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace qe::tool {

struct ToolModel;

/// One join as the refiner reads it. Its ends are positions among the subjects.
struct ModelJoin
{
    amd_id id;
    std::string name{};
    std::size_t left = 0;
    std::size_t right = 0;
    int weight = 0;
    BMT_I_Association::CardinalityRange leftCardinality{};
    BMT_I_Association::CardinalityRange rightCardinality{};
    std::string condition{};

    /// Both take one of the two ends.
    [[nodiscard]] std::size_t OtherEnd(std::size_t end) const { return left == end ? right : left; }
    [[nodiscard]] const BMT_I_Association::CardinalityRange& CardinalityAt(std::size_t end) const
    {
        return left == end ? leftCardinality : rightCardinality;
    }
};

/// A model as the graph that the refiner sees: its subjects numbered in id order, its joins read
/// once, those between shortcuts and what they stand for included.
class ModelGraph
{
public:
    /// One step from a subject.
    struct Step
    {
        std::size_t subject = 0;
        std::size_t join = 0;
    };

    /// Reads all joins. The model must outlive this object.
    explicit ModelGraph(const ToolModel& model);

    [[nodiscard]] const ToolModel& GetToolModel() const { return *mToolModel; }
    [[nodiscard]] const model::Model& GetModel() const { return mGateway.GetModel(); }
    [[nodiscard]] model::ModelGateway& GetGateway() const { return mGateway; }
    [[nodiscard]] std::span<const amd_id> GetSubjects() const { return mSubjects; }
    /// Returns the joins that can be read, in id order.
    [[nodiscard]] const std::vector<ModelJoin>& GetJoins() const { return mJoins; }
    [[nodiscard]] const std::vector<amd_id>& GetUnreadableJoins() const { return mUnreadableJoins; }
    /// Returns the steps to other subjects, in join order.
    [[nodiscard]] std::span<const Step> GetSteps(std::size_t subject) const;

    /// Returns the object's name, qualified where another object of its kind has the same.
    [[nodiscard]] std::string NameOf(const amd_id& id) const;
    [[nodiscard]] std::string NameOf(std::size_t subject) const;

private:
    void ReadJoins(const ToolModel& model);
    void AddShortcutJoins(const ToolModel& model);
    void ListSteps();
    void CountNames();

    const ToolModel* mToolModel;
    /// The refiner's operations want a gateway that may change; this one never does.
    mutable model::ModelGateway mGateway;
    std::span<const amd_id> mSubjects;
    std::map<amd_id, std::size_t> mPositions;
    std::vector<ModelJoin> mJoins;
    std::vector<amd_id> mUnreadableJoins;
    /// The steps of all subjects one after another, and where those of each begin.
    std::vector<Step> mSteps;
    std::vector<std::size_t> mFirstSteps;
    std::map<std::string, int> mNameCounts;
};

/// Returns the names between commas: the first `limit`, then "and 7 more".
[[nodiscard]] std::string ListNames(const ModelGraph& model,
                                    const std::vector<std::size_t>& subjects, std::size_t limit);

} // namespace qe::tool

#endif
