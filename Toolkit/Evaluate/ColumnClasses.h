#ifndef TOOLKIT_EVALUATE_COLUMNCLASSES_H
#define TOOLKIT_EVALUATE_COLUMNCLASSES_H

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

/// Two columns that are joined, each as "table.column" in lower case (A to Z).
using NamedPair = std::pair<std::string, std::string>;

/// Sets of columns that joins make equal. Two lists of joins that make the same columns equal lead
/// to the same rows: a = b and b = c mean what a = c and b = c mean.
class ColumnClasses
{
public:
    ColumnClasses() = default;
    explicit ColumnClasses(const std::vector<NamedPair>& pairs);

    [[nodiscard]] const std::set<std::set<std::string>>& Get() const { return mClasses; }

    /// Returns whether the pairs that have both columns in one of these classes make up all of
    /// these classes.
    [[nodiscard]] bool CanBeMadeOf(const std::vector<NamedPair>& pairs) const;

    friend bool operator==(const ColumnClasses&, const ColumnClasses&) = default;

private:
    std::set<std::set<std::string>> mClasses;
};

/// Returns the name of a column as classes compare it.
[[nodiscard]] std::string ToColumnName(const std::string& table, const std::string& column);

} // namespace qe::tool

#endif
