#ifndef TOOLKIT_MODEL_MODELASSEMBLER_H
#define TOOLKIT_MODEL_MODELASSEMBLER_H

#include "Toolkit/Model/ContentReader.h"
#include "Toolkit/Text/JsonProblems.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace qe::model {
class Model;
class ModelError;
} // namespace qe::model

namespace qe::tool {

/// Makes a model of the content of a file. Refers to both arguments.
class ModelAssembler
{
public:
    ModelAssembler(const ModelContent& content, JsonProblems& problems);

    /// Returns the model, and reports what is wrong with it. As long as there are mistakes, objects
    /// that have them are left out, so that conditions can still be checked against the rest; null
    /// when that does not lead to a model.
    [[nodiscard]] std::shared_ptr<const model::Model> Assemble();

    /// Returns what the file says about the objects of the model.
    [[nodiscard]] const std::map<amd_id, std::string>& GetDescriptions() const
    {
        return mDescriptions;
    }

    /// Returns the names that the file says stood between quotes, by query subject.
    [[nodiscard]] const std::map<amd_id, NameSet>& GetQuotedNames() const { return mQuotedNames; }
    /// Returns how many rows query subjects have, where the file says it.
    [[nodiscard]] const std::map<amd_id, std::uint64_t>& GetRows() const { return mRows; }

    /// Returns the names of the objects that were left out.
    [[nodiscard]] const std::set<std::string>& GetDoubtfulNames() const { return mDoubtfulNames; }

private:
    [[nodiscard]] std::shared_ptr<const model::Model> Build();
    void Report(const model::ModelError& error);
    void LeaveOut(const model::ModelError& error);

    const ModelContent* mContent;
    JsonProblems* mProblems;
    std::vector<bool> mLeftOut;
    std::map<amd_id, std::string> mDescriptions;
    std::map<amd_id, NameSet> mQuotedNames;
    std::map<amd_id, std::uint64_t> mRows;
    std::set<std::string> mDoubtfulNames;
};

} // namespace qe::tool

#endif
