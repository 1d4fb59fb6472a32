#ifndef TOOLKIT_IMPORT_FORMATS_LEFTOUT_H
#define TOOLKIT_IMPORT_FORMATS_LEFTOUT_H

#include <map>
#include <string>
#include <vector>

namespace qe::tool {

/// Counts what a source states and a model has no place for.
class LeftOut
{
public:
    /// `kind` in the plural, such as "measures".
    void Add(const std::string& kind, const std::string& name) { mNames[kind].push_back(name); }

    /// Returns a sentence for each kind, with the first names.
    [[nodiscard]] std::vector<std::string> List() const;

private:
    std::map<std::string, std::vector<std::string>> mNames;
};

} // namespace qe::tool

#endif
