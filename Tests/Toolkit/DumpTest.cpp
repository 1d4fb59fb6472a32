#include "Tests/Toolkit/SchemaLines.h"
#include "Toolkit/Import/SqlScripts.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace qe::tool;
using nlohmann::json;
using qe::test::DescribeSchema;
using qe::test::JoinLine;
using qe::test::KeyLine;
using Names = std::vector<std::string>;
using Lines = std::vector<std::string>;

/// Shortens the names of a truth, which carry their schema, to those that need none.
class ShownNames
{
public:
    explicit ShownNames(const json& names)
    {
        for (const std::string name : names)
            ++mCounts[Bare(name)];
    }

    [[nodiscard]] std::string Of(const std::string& name) const
    {
        return mCounts.at(Bare(name)) > 1 ? name : Bare(name);
    }

private:
    static std::string Bare(const std::string& name) { return name.substr(name.find('.') + 1); }

    std::map<std::string, int> mCounts;
};

/// What a truth file says, a line for each table, key and foreign key.
std::set<std::string> DescribeTruth(const json& truth)
{
    const ShownNames names(truth["tableNames"]);
    std::set<std::string> lines;
    for (const std::string name : truth["tableNames"])
        lines.insert("table " + names.Of(name));
    for (const json& key : truth["uniqueKeys"])
        lines.insert(KeyLine(names.Of(key["table"]), key["columns"]));
    for (const json& key : truth["foreignKeys"])
        lines.insert(JoinLine({.table = names.Of(key["table"]),
                               .columns = key["columns"],
                               .target = names.Of(key["references"]),
                               .referenced = key["referencedColumns"],
                               .isUnique = key["unique"],
                               .isNotNull = key["notNull"],
                               .isReferencedUnique = key["referencedUnique"]}));
    return lines;
}

Lines Without(const std::set<std::string>& lines, const std::set<std::string>& others)
{
    Lines rest;
    std::set_difference(lines.begin(), lines.end(), others.begin(), others.end(),
                        std::back_inserter(rest));
    return rest;
}

/// SQL Server takes the columns that a key lists, although no comma parts it from the column before
/// it, which may be null and so cannot be the key.
std::set<std::string> WithCorrections(std::set<std::string> lines, const json& truth)
{
    if (truth["dialect"] != "sqlserver")
        return lines;
    if (lines.erase("key x_policy_export_audit (policy_version)") != 0)
        lines.insert("key x_policy_export_audit (id)");
    if (lines.erase("key x_security_zone_ref_role (role_name)") != 0)
        lines.insert("key x_security_zone_ref_role (id)");
    return lines;
}

/// Views have neither keys nor joins, and no truth lists them.
std::set<std::string> WithoutViews(std::set<std::string> lines, const json& truth)
{
    std::size_t views = truth["views"];
    const std::set<std::string> known = DescribeTruth(truth);
    for (const std::string& line : Without(lines, known))
        if (truth["dialect"] == "sqlite" && line.starts_with("table ") && views > 0) {
            --views;
            lines.erase(line);
        }
    return lines;
}

TEST(Dumps, DeclareWhatServersMakeOfThem)
{
    const std::filesystem::path folder = std::filesystem::path(QEREFINER_DATA_DIR) / "dumps";
    if (!std::filesystem::exists(folder))
        GTEST_SKIP() << "no dumps at hand: " << folder;
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".sql")
            continue;
        ++files;
        std::filesystem::path beside = entry.path();
        const json truth = json::parse(std::ifstream(beside.replace_extension(".truth.json")));
        DatabaseSchema schema = ReadSqlScripts({entry.path()}, std::nullopt);
        EXPECT_EQ(schema.origin.empty(), truth["dialect"] == "sqlite") << schema.origin;
        ResolveForeignKeys(schema);
        const std::set<std::string> known = WithCorrections(DescribeTruth(truth), truth);
        const std::set<std::string> read = WithoutViews(DescribeSchema(schema), truth);
        EXPECT_THAT(Without(known, read), testing::IsEmpty()) << "missing in " << entry.path();
        EXPECT_THAT(Without(read, known), testing::IsEmpty()) << "invented in " << entry.path();
    }
    EXPECT_GE(files, 26U);
}

} // namespace
