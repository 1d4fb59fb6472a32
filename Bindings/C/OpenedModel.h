#ifndef BINDINGS_C_OPENEDMODEL_H
#define BINDINGS_C_OPENEDMODEL_H

#include "Bindings/C/AskerPool.h"
#include "Bindings/C/CallOptions.h"
#include "Toolkit/Model/ToolModel.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {
class JoinHistory;
}

namespace qe::binding {

/// A model with its past queries, as all calls about it use it. Threads may share it.
class OpenedModel
{
public:
    /// Takes the model that was read from the path. Throws InputError when its history cannot be
    /// read.
    OpenedModel(tool::ToolModel model, std::filesystem::path path, const OpenOptions& options);
    OpenedModel(const OpenedModel&) = delete;
    OpenedModel& operator=(const OpenedModel&) = delete;

    /// Returns the model as it was declared.
    [[nodiscard]] const tool::ToolModel& GetDeclared() const { return mDeclared; }
    /// Returns the model as it is asked: with the joins that people make beside it.
    [[nodiscard]] const tool::ToolModel& GetAsked() const { return mAsked; }
    [[nodiscard]] const std::filesystem::path& GetPath() const { return mPath; }
    /// Null where there is none.
    [[nodiscard]] const std::shared_ptr<tool::JoinHistory>& GetHistory() const { return mHistory; }
    /// Returns what reading left out, one sentence each.
    [[nodiscard]] const std::vector<std::string>& GetNotes() const { return mNotes; }
    /// Returns what requests do not say.
    [[nodiscard]] const tool::Question& GetDefaults() const { return mDefaults; }

    [[nodiscard]] tool::Answer Ask(const tool::Question& question) const
    {
        return mAskers.Ask(question);
    }

private:
    tool::ToolModel mDeclared;
    std::filesystem::path mPath;
    std::shared_ptr<tool::JoinHistory> mHistory;
    tool::ToolModel mAsked;
    std::vector<std::string> mNotes;
    tool::Question mDefaults;
    mutable AskerPool mAskers;
};

/// Opens whatever the path or URL leads to. Throws InputError.
[[nodiscard]] std::shared_ptr<const OpenedModel> OpenPath(const std::filesystem::path& path,
                                                          const OpenOptions& options);

/// Opens what the bytes of a file of that name are. Throws InputError.
[[nodiscard]] std::shared_ptr<const OpenedModel>
OpenBytes(std::string_view bytes, const std::filesystem::path& name, const OpenOptions& options);

} // namespace qe::binding

/// What callers hold: one share of the model, which answers share too.
struct qe_model
{
    std::shared_ptr<const qe::binding::OpenedModel> opened;
};

#endif
