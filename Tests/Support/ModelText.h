#ifndef TESTS_SUPPORT_MODELTEXT_H
#define TESTS_SUPPORT_MODELTEXT_H

#include "Engine/Model/Model.h"
#include "Engine/Model/ModelGateway.h"
#include "amd_id.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qe::test {

/// Returns the parts between separators, without spaces around them and without empty parts.
[[nodiscard]] std::vector<std::string> SplitList(std::string_view text, char separator);

/// Turns a text into a model and names into ids, for tests that need to be read at a glance:
///
///     const ModelText model(R"(
///         Orders >- Customer : oc on [Model].[Orders].[Key] = [Model].[Customer].[Key]
///         Customer >o-o Region : cr
///         Orders(Key, Amount), Customer(Key)
///         Bill To -> Customer
///         Orders >- Bill To : ob
///     )");
///     refiner.ComputeJoinPath(model.Ids("Orders, Region"), ..., path, ...);
///     EXPECT_EQ(model.Names(path), "oc, cr");
///
/// Statements stand on lines or between semicolons; "//" starts a comment.
///
///     A >- B : name              relationship; A has many rows (1..n) for one (1..1) of B
///     A >- B                     the same, named "A-B"
///     A >= B : name              relationship of class 136
///     A >~ B : name              join that the query defines
///     A >- B : name on text      with a condition
///     S -> A                     shortcut of the ordinary kind; S ->2 A: of kind 2
///     s -> name : A, B           relationship shortcut with the ends A and B
///     A, B(Item, Item)           query subjects, with items; adds to a subject that exists
///     filter F on text           model filter; query filter F on text
///     namespace N                what comes next lies in N; at the start: "Model"
///     folder F                   what comes next lies in F, in the last namespace; "folder F/G"
///                                goes deeper; "folder" alone leads back out of the folders
///
/// Operators stand between spaces. The ends of a join's operator are: nothing 1..1, "o" 0..1,
/// ">" or "<" 1..n, ">o" or "o<" 0..n: "-", "o-", ">-<", ">o-o", "o=<", "-o<". A subject is made
/// where its name first stands; a name may end in "#7", which sets the number of its id.
///
/// Numbers count from 1 within a class, in the order of the text. What is no statement of another
/// kind names subjects. Mistakes in the model throw a qe::model::ModelError.
class ModelText
{
public:
    explicit ModelText(std::string_view text);
    /// Shows a model that was built otherwise.
    explicit ModelText(std::shared_ptr<const qe::model::Model> model);

    [[nodiscard]] const std::shared_ptr<const qe::model::Model>& GetModel() const { return mModel; }
    /// Returns the gateway into the model, which lives as long as this object.
    [[nodiscard]] qe::model::ModelGateway& GetGateway() const { return *mGateway; }

    /// Returns the object of that name: subject, join, filter, folder or namespace. "S.Item" is
    /// an item, "Name#7" the one of that number where several have the name. Throws
    /// std::invalid_argument when there is not exactly one.
    [[nodiscard]] amd_id Id(std::string_view name) const;
    /// Does so for each name between commas.
    [[nodiscard]] std::vector<amd_id> Ids(std::string_view names) const;
    /// Returns the names of the objects, with ", " between them; unknown ids as "class:number".
    [[nodiscard]] std::string Names(const std::vector<amd_id>& ids) const;
    [[nodiscard]] std::string Name(const amd_id& id) const;

    /// Returns all query subjects and shortcuts, in id order: the nodes of the whole graph.
    [[nodiscard]] std::vector<amd_id> Subjects() const;
    /// Returns all joins, in id order.
    [[nodiscard]] std::vector<amd_id> Joins() const;

private:
    std::shared_ptr<const qe::model::Model> mModel;
    std::unique_ptr<qe::model::ModelGateway> mGateway;
    std::multimap<std::string, amd_id> mIds;
};

} // namespace qe::test

#endif
