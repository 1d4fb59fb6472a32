#include "Toolkit/Ask/ColumnPairs.h"

#include "Engine/Expression/ParseReport.h"

#include <cstddef>

namespace qe::tool {

namespace {

Column ToColumn(const expression::NamedReference& reference)
{
    const auto& names = reference.names;
    if (names.size() < 2)
        return {};
    return {names[names.size() - 2].ToStdString(), names.back().ToStdString()};
}

} // namespace

std::vector<ColumnPair> FindColumnPairs(const std::string& condition)
{
    const auto references = expression::FindReferences(I18NString(condition)).references;
    std::vector<ColumnPair> pairs;
    for (std::size_t index = 1; index < references.size(); ++index) {
        const Column left = ToColumn(references[index - 1]);
        const Column right = ToColumn(references[index]);
        if (left.subject.empty() || right.subject.empty() || left.subject == right.subject)
            continue;
        pairs.push_back({left, right});
        // The next pair begins behind this one.
        ++index;
    }
    return pairs;
}

} // namespace qe::tool
