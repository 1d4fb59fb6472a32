#include "Bindings/C/OpenedModel.h"

#include "Toolkit/History/JoinHistory.h"
#include "Toolkit/History/LoadHistory.h"
#include "Toolkit/Import/OpenModel.h"

#include <utility>

namespace qe::binding {

OpenedModel::OpenedModel(tool::ToolModel model, std::filesystem::path path,
                         const OpenOptions& options)
    : mDeclared(std::move(model)), mPath(std::move(path)), mNotes(mDeclared.notes), mAskers(mAsked)
{
    const tool::LoadedHistory loaded = tool::LoadHistoryOf(mDeclared, mPath, options.histories);
    mNotes.insert(mNotes.end(), loaded.notes.begin(), loaded.notes.end());
    mHistory = loaded.history;
    mAsked = mHistory == nullptr ? mDeclared : tool::WithHistory(mDeclared, mHistory);
    mDefaults.settings = options.settings;
}

std::shared_ptr<const OpenedModel> OpenPath(const std::filesystem::path& path,
                                            const OpenOptions& options)
{
    tool::ApplySettings(options.settings);
    return std::make_shared<OpenedModel>(tool::OpenModelAs(path, options.kind, options.import),
                                         path, options);
}

std::shared_ptr<const OpenedModel>
OpenBytes(std::string_view bytes, const std::filesystem::path& name, const OpenOptions& options)
{
    tool::ApplySettings(options.settings);
    return std::make_shared<OpenedModel>(
        tool::OpenBytes(std::string(bytes), name, options.kind, options.import), name, options);
}

} // namespace qe::binding
