#ifndef TOOLKIT_IMPORT_FORMATS_LEFTOUT_H
#define TOOLKIT_IMPORT_FORMATS_LEFTOUT_H

#include "Toolkit/Text/JsonProblems.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

/// Why something cannot be kept, and where it stands.
struct LeftOutReason
{
    /// Those of the document; null where there is nothing to say.
    const JsonProblems* problems = nullptr;
    std::string pointer{};
    std::string text{};
};

/// Counts what a source states and a model has no place for.
class LeftOut
{
public:
    /// `kind` in the plural, such as "measures".
    void Add(const std::string& kind, const std::string& name)
    {
        mEntries[kind].push_back({.name = name});
    }
    /// The same for what cannot be kept, which stands at a place of a document. The problems must
    /// outlive this.
    void Add(const std::string& kind, const std::string& name, LeftOutReason reason)
    {
        mEntries[kind].push_back({.name = name, .reason = std::move(reason)});
    }

    /// Returns a sentence for each kind, with the first names.
    [[nodiscard]] std::vector<std::string> List() const;

private:
    struct Entry
    {
        std::string name{};
        LeftOutReason reason{};
    };

    static std::string Describe(const Entry& entry);

    std::map<std::string, std::vector<Entry>> mEntries;
};

} // namespace qe::tool

#endif
