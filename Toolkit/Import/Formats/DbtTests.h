#ifndef TOOLKIT_IMPORT_FORMATS_DBTTESTS_H
#define TOOLKIT_IMPORT_FORMATS_DBTTESTS_H

#include "Toolkit/Import/Formats/DbtIndex.h"
#include "Toolkit/Import/Formats/LeftOut.h"
#include "Toolkit/Import/Formats/SubjectIndex.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"
#include "Toolkit/Text/JsonObject.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

/// What stands behind a reference, the weakest first.
enum class EDbtProof : std::uint8_t
{
    /// A test only.
    Tested,
    /// A constraint of a model without an enforced contract, which nothing makes.
    Stated,
    /// A constraint that dbt makes in the database.
    Made,
};

/// A test or constraint by which columns of one table refer to those of another.
struct DbtReference
{
    std::size_t from = 0;
    std::size_t to = 0;
    /// Columns, or one expression; in pairs with those of the other end.
    std::vector<std::string> fromColumns{};
    /// Empty for the key of the table.
    std::vector<std::string> toColumns{};
    EDbtProof proof = EDbtProof::Tested;
    /// The rows that it holds for; empty for all.
    std::string where{};
};

/// What tests and constraints say of tables.
struct DbtFacts
{
    std::vector<DbtReference> references{};
    /// Expressions that no two rows of a table agree in.
    std::set<std::pair<std::size_t, std::string>> uniqueExpressions{};
};

/// Reads data tests one by one: keys and columns that are never null go into the tables, which
/// stand at the positions of their nodes.
class DbtTests
{
public:
    /// Refers to all of them.
    DbtTests(const DbtIndex& index, std::vector<SchemaTable>& tables, JsonProblems& problems)
        : mIndex(index), mTables(tables), mProblems(problems)
    {}

    void Read(const PlacedJson& test);

    [[nodiscard]] DbtFacts& GetFacts() { return mFacts; }
    [[nodiscard]] LeftOut& GetLeftOut() { return mLeftOut; }

private:
    struct Test;
    using Names = std::vector<std::string>;

    [[nodiscard]] std::optional<Test> Open(const PlacedJson& json);
    /// Returns whether the test is on.
    [[nodiscard]] bool ReadConfig(JsonObject& object, Test& test);
    void ReadArguments(JsonObject& object, Test& test);
    [[nodiscard]] std::optional<std::size_t> FindTable(JsonObject& object, Test& test);
    [[nodiscard]] Names GetColumns(Test& test, std::initializer_list<const char*> keys);
    void ReadNotNull(Test& test);
    void ReadKey(Test& test, EKey kind);
    void ReadRelationship(Test& test);
    void ReadForeignKey(Test& test);
    void AddReference(const Test& test, const std::string& target, DbtReference reference);

    const DbtIndex& mIndex;
    std::vector<SchemaTable>& mTables;
    JsonProblems& mProblems;
    DbtFacts mFacts;
    LeftOut mLeftOut;
};

} // namespace qe::tool

#endif
