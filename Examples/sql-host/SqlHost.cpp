// A host that writes its SQL itself: it asks the refiner which joins a report needs, and makes the
// FROM clause of them in its own way.

#include <AQE_Governors.h>
#include <AQE_I_PathSelector.h>
#include <AQE_I_QuerySubjectShortcutInfo.h>
#include <AQE_I_Refiner.h>
#include <AQE_JoinCache.h>
#include <AQE_RequestContext.h>
#include <Engine/Model/Model.h>
#include <Engine/Model/ModelBuilder.h>
#include <Engine/Model/ModelGateway.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

using qe::model::Model;
using Ids = std::vector<amd_id>;
using JoinInfo = AQE_I_Refiner::QEjoinInfo;

/// Books are lent to readers; a book has a shelf, and a reader lives in a town.
std::shared_ptr<const Model> MakeLibrary()
{
    using namespace qe::model;
    ModelBuilder builder;
    const amd_id space = builder.AddNamespace("library");
    const auto add = [&](const char* name, std::initializer_list<const char*> columns) {
        const amd_id subject = builder.AddQuerySubject(space, name);
        for (const char* column : columns)
            builder.AddItem(subject, column);
        return subject;
    };
    const amd_id loans = add("loans", {"book_id", "reader_id", "days"});
    const amd_id books = add("books", {"book_id", "shelf_id", "title"});
    const amd_id readers = add("readers", {"reader_id", "town_id"});
    const amd_id shelves = add("shelves", {"shelf_id", "floor"});
    const amd_id towns = add("towns", {"town_id", "name"});
    const auto join = [&](const amd_id& many, const amd_id& one, const std::string& from,
                          const std::string& to, const std::string& key) {
        const std::string condition =
            "[library].[" + from + "].[" + key + "] = [library].[" + to + "].[" + key + "]";
        builder.AddRelationship(space, from + "-" + to, {many, kOneToMany}, {one, kOneToOne},
                                condition);
    };
    join(loans, books, "loans", "books", "book_id");
    join(loans, readers, "loans", "readers", "reader_id");
    join(books, shelves, "books", "shelves", "shelf_id");
    join(readers, towns, "readers", "towns", "town_id");
    return builder.Build();
}

/// A report: what it selects, and the query subjects that this needs.
struct Report
{
    std::string select;
    std::vector<std::string> subjects;
};

/// Writes reports over one model as SQL.
class SqlWriter
{
public:
    explicit SqlWriter(std::shared_ptr<const Model> model)
        : mModel(std::move(model)), mGateway(mModel)
    {
        mContext.SetJoinCache(std::make_unique<AQE_JoinCache>());
    }

    [[nodiscard]] std::string Write(const Report& report)
    {
        Ids subjects;
        for (const std::string& name : report.subjects) {
            const auto found = mModel->FindByName(qe::model::ENameKind::Subject, name);
            subjects.insert(subjects.end(), found.begin(), found.end());
        }
        return "SELECT " + report.select + "\nFROM " + WriteFrom(subjects) + ";\n";
    }

private:
    /// Returns the joins of the path between the subjects.
    [[nodiscard]] std::vector<JoinInfo> FindJoins(const Ids& subjects)
    {
        const Ids nodes(mModel->GetSubjects().begin(), mModel->GetSubjects().end());
        const Ids candidates(mModel->GetJoins().begin(), mModel->GetJoins().end());
        const auto refiner =
            AQE_I_Refiner::Create(&mGateway, nullptr, &mGovernors, &mContext, true, true);
        Ids path;
        refiner->ComputeJoinPath(subjects, {}, {}, nodes, candidates, {}, path);
        std::vector<JoinInfo> joins;
        for (const amd_id& id : path) {
            JoinInfo info;
            if (AQE_I_Refiner::GetJoinInfo(&mGateway, &mContext, id, info))
                joins.push_back(info);
        }
        return joins;
    }

    /// Begins with the first subject, and takes the joins as they touch what is there already.
    [[nodiscard]] std::string WriteFrom(const Ids& subjects)
    {
        std::vector<JoinInfo> joins = FindJoins(subjects);
        std::set<amd_id> joined{subjects.front()};
        std::string sql = NameOf(subjects.front());
        while (!joins.empty()) {
            const auto next = std::find_if(joins.begin(), joins.end(), [&](const JoinInfo& join) {
                return joined.count(join.leftQuerySubject) != joined.count(join.rightQuerySubject);
            });
            if (next == joins.end())
                break;
            const amd_id added = joined.count(next->leftQuerySubject) != 0 ? next->rightQuerySubject
                                                                           : next->leftQuerySubject;
            sql += "\nJOIN " + NameOf(added) + " ON " + ToSql(next->expression.ToStdString());
            joined.insert(added);
            joins.erase(next);
        }
        return sql;
    }

    [[nodiscard]] std::string NameOf(const amd_id& id) const
    {
        return mModel->GetQualifiedName(id).back();
    }

    /// Conditions name columns as [library].[loans].[book_id]; here that is loans.book_id.
    [[nodiscard]] static std::string ToSql(std::string condition)
    {
        const std::string space = "[library].";
        for (auto at = condition.find(space); at != std::string::npos; at = condition.find(space))
            condition.erase(at, space.size());
        std::erase_if(condition, [](char letter) { return letter == '[' || letter == ']'; });
        return condition;
    }

    std::shared_ptr<const Model> mModel;
    qe::model::ModelGateway mGateway;
    AQE_Governors mGovernors{};
    AQE_RequestContext mContext;
};

} // namespace

int main()
{
    SqlWriter writer(MakeLibrary());
    std::cout << writer.Write(
        {.select = "towns.name, sum(loans.days)", .subjects = {"loans", "towns"}});
    std::cout << '\n'
              << writer.Write({.select = "shelves.floor, towns.name, sum(loans.days)",
                               .subjects = {"shelves", "towns", "loans"}});
    return 0;
}
