#ifndef TOOLKIT_IMPORT_FORMATS_DBTINDEX_H
#define TOOLKIT_IMPORT_FORMATS_DBTINDEX_H

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// A node or source of dbt that stands for a table.
struct DbtNode
{
    /// Its unique_id.
    std::string id{};
    std::string name{};
    std::string package{};
    /// Of a model with several versions.
    std::string version{};
    /// Whether it is meant where no version is named.
    bool isLatest = true;
    /// The name of the source that it belongs to; empty for a node.
    std::string sourceName{};
    /// The parts of its name in the database, the outermost first.
    std::vector<std::string> relation{};
};

/// Finds the tables of dbt by what tests and constraints call them.
class DbtIndex
{
public:
    /// Adds the next one.
    void Add(const DbtNode& node);

    [[nodiscard]] const DbtNode& Get(std::size_t position) const { return mNodes[position]; }
    [[nodiscard]] std::size_t GetSize() const { return mNodes.size(); }

    [[nodiscard]] std::optional<std::size_t> FindId(const std::string& id) const;

    /// Returns what a text refers to: "ref('x')", "ref('package', 'x', v=2)", "source('s', 'x')",
    /// with anything around it. Of several that match, those among `ids` go first, and among these
    /// the latest version.
    [[nodiscard]] std::optional<std::size_t> FindCall(std::string_view text,
                                                      const std::vector<std::string>& ids) const;

    /// Returns the table of that name in the database, of which outer parts may be missing; nodes
    /// go before sources.
    [[nodiscard]] std::optional<std::size_t>
    FindRelation(const std::vector<std::string>& parts) const;

private:
    std::vector<DbtNode> mNodes;
    std::map<std::string, std::size_t> mById;
    std::map<std::string, std::vector<std::size_t>> mByName;
    /// By the last parts of names in lower case, one, two or three of them.
    std::map<std::vector<std::string>, std::size_t> mByRelation;
};

} // namespace qe::tool

#endif
