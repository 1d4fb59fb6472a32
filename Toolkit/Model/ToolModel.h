#ifndef TOOLKIT_MODEL_TOOLMODEL_H
#define TOOLKIT_MODEL_TOOLMODEL_H

#include "AQE_Governors.h"
#include "Toolkit/Model/Decision.h"
#include "Toolkit/Sql/SqlNames.h"
#include "amd_id.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace qe::model {
class Model;
}

namespace qe::tool {

class PathAdvisor;

/// A model with what else a request needs to know of it.
struct ToolModel
{
    std::shared_ptr<const model::Model> model;
    /// The user classes that requests are made with.
    std::vector<std::string> userClasses{};
    AQE_Governors governors{};
    /// What is said about objects that anything is said about.
    std::map<amd_id, std::string> descriptions{};
    /// How the names of tables and columns were written.
    WrittenNames writtenNames{};
    /// About how many rows query subjects have, where it is known.
    std::map<amd_id, std::uint64_t> rows{};
    std::vector<Decision> decisions{};
    std::vector<AcceptedFinding> acceptedFindings{};
    /// Files of past queries, as the model names them: relative to where it lies.
    std::vector<std::string> histories{};
    /// What is asked about equally cheap paths before their keys; may be null.
    std::shared_ptr<const PathAdvisor> advisor{};
    /// What reading left out or had to guess, one sentence each.
    std::vector<std::string> notes{};
    /// What it was read from, such as "PostgreSQL, 12 statements"; empty for nothing to tell.
    std::string origin{};
    /// Whether it was read from a model file, which can keep decisions.
    bool isModelFile = false;
};

} // namespace qe::tool

#endif
