#ifndef TOOLKIT_AGENT_MODELSHELF_H
#define TOOLKIT_AGENT_MODELSHELF_H

#include "Toolkit/Model/ToolModel.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

class JoinHistory;

/// A model under the name by which agents ask for it.
struct ServedModel
{
    std::string name{};
    /// Where it was read from, as people may see it.
    std::string source{};
    ToolModel model{};
    /// The same with the joins that people make beside it, which questions go to.
    ToolModel asked{};
    /// Null where no past queries are known.
    std::shared_ptr<const JoinHistory> history{};
};

/// The models that a server answers from. They never change, so any number of threads may read.
class ModelShelf
{
public:
    /// Throws InputError when two models have one name.
    explicit ModelShelf(std::vector<ServedModel> models);

    [[nodiscard]] std::span<const ServedModel> Get() const { return mModels; }
    /// Returns the model of that name; for the empty name the only one there is. Throws InputError
    /// that names the right ones.
    [[nodiscard]] const ServedModel& Find(std::string_view name) const;

private:
    [[nodiscard]] std::vector<std::string> ListNames() const;

    std::vector<ServedModel> mModels;
};

/// A model on a command line, with a name before it or not: "shop=data/shop.sqlite".
struct NamedModel
{
    std::string name{};
    std::string path{};
};

/// Returns the model with its name: the letters before a "=" where they are a plain word, else what
/// the file, folder or database is called, without its ending.
[[nodiscard]] NamedModel ParseNamedModel(std::string_view text);

} // namespace qe::tool

#endif
