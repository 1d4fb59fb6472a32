#include <AQE_Governors.h>
#include <AQE_I_PathSelector.h>
#include <AQE_I_QuerySubjectShortcutInfo.h>
#include <AQE_I_Refiner.h>
#include <AQE_JoinCache.h>
#include <AQE_RequestContext.h>
#include <Engine/Model/Model.h>
#include <Engine/Model/ModelBuilder.h>
#include <Engine/Model/ModelGateway.h>

#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace {

using qe::model::Model;

/// Orders know their customer and, through two shortcuts to one table of dates, when they were
/// placed and shipped. A customer's city leads to the region.
std::shared_ptr<const Model> MakeModel()
{
    using namespace qe::model;
    ModelBuilder builder;
    const amd_id sales = builder.AddNamespace("Sales");
    const amd_id orders = builder.AddQuerySubject(sales, "Orders");
    const amd_id customer = builder.AddQuerySubject(sales, "Customer");
    const amd_id city = builder.AddQuerySubject(sales, "City");
    const amd_id region = builder.AddQuerySubject(sales, "Region");
    const amd_id date = builder.AddQuerySubject(sales, "Date");
    const amd_id shipDate = builder.AddShortcut(sales, "Ship Date", {date});

    for (const char* item : {"Customer", "Ordered", "Shipped"})
        builder.AddItem(orders, item);
    for (const char* item : {"Key", "City"})
        builder.AddItem(customer, item);
    for (const char* item : {"Key", "Region"})
        builder.AddItem(city, item);
    builder.AddItem(region, "Key");
    builder.AddItem(date, "Key");

    const auto join = [&](const char* name, const amd_id& many, const amd_id& one,
                          const char* condition) {
        builder.AddRelationship(sales, name, {many, kOneToMany}, {one, kOneToOne}, condition);
    };
    join("Orders-Customer", orders, customer,
         "[Sales].[Orders].[Customer] = [Sales].[Customer].[Key]");
    join("Customer-City", customer, city, "[Sales].[Customer].[City] = [Sales].[City].[Key]");
    join("City-Region", city, region, "[Sales].[City].[Region] = [Sales].[Region].[Key]");
    join("Orders-Date", orders, date, "[Sales].[Orders].[Ordered] = [Sales].[Date].[Key]");
    join("Orders-Ship Date", orders, shipDate,
         "[Sales].[Orders].[Shipped] = [Sales].[Ship Date].[Key]");
    return builder.Build();
}

std::vector<amd_id> FindSubjects(const Model& model, const std::vector<std::string>& names)
{
    std::vector<amd_id> ids;
    for (const std::string& name : names) {
        for (const amd_id& id : model.FindByName(qe::model::ENameKind::Subject, name))
            ids.push_back(id);
    }
    return ids;
}

std::string NameOf(const Model& model, const amd_id& id)
{
    return model.GetQualifiedName(id).back();
}

void Answer(const std::shared_ptr<const Model>& model, const std::vector<std::string>& names)
{
    const std::vector<amd_id> nodes(model->GetSubjects().begin(), model->GetSubjects().end());
    const std::vector<amd_id> joins(model->GetJoins().begin(), model->GetJoins().end());
    const std::vector<amd_id> subjects = FindSubjects(*model, names);

    qe::model::ModelGateway gateway(model);
    AQE_Governors governors{};
    AQE_RequestContext context;
    context.SetJoinCache(std::make_unique<AQE_JoinCache>());
    const auto selector = AQE_I_PathSelector::CreateFirstPathSelector(&gateway);
    const std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> shortcuts(
        AQE_I_QuerySubjectShortcutInfo::Create(&gateway, &governors, &context));
    if (shortcuts == nullptr)
        throw std::bad_alloc();
    shortcuts->Initialize(subjects, joins, {});
    const auto refiner =
        AQE_I_Refiner::Create(&gateway, selector.Get(), &governors, &context, true, true);
    refiner->SetShortcutInfo(shortcuts.get());

    std::vector<amd_id> path;
    refiner->ComputeJoinPath(subjects, {}, {}, nodes, joins, {}, path);

    std::cout << "\nTo report on";
    for (const amd_id& subject : subjects) {
        const amd_id target =
            AQE_I_Refiner::GetRefQuerySubject(&gateway, subject, nullptr, nullptr);
        std::cout << " [" << NameOf(*model, subject) << ']';
        if (target != amd_id{} && target != subject)
            std::cout << " (which stands for [" << NameOf(*model, target) << "])";
    }
    std::cout << ", join\n";
    for (const amd_id& join : path) {
        AQE_I_Refiner::QEjoinInfo info;
        if (AQE_I_Refiner::GetJoinInfo(&gateway, &context, join, info))
            std::cout << "  " << info.name << "  on  " << info.expression << '\n';
    }
}

} // namespace

/// Builds a model and asks the refiner which joins three reports need.
int main()
{
    const auto model = MakeModel();
    Answer(model, {"Orders", "Region"});
    Answer(model, {"Orders", "Ship Date"});
    Answer(model, {"Customer", "City", "Ship Date"});
    return 0;
}
