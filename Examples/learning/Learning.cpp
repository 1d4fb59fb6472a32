// A host whose selector learns: the same report is asked for before and after people made their
// choice.

#include "LearningSelector.h"

#include "AQE_Governors.h"
#include "AQE_I_Refiner.h"
#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"
#include "Engine/Model/ModelGateway.h"

#include <iostream>
#include <memory>
#include <vector>

namespace {

using qe::model::Model;

/// Orders refer twice to days: by when they were placed, and by when they were shipped.
std::shared_ptr<const Model> MakeModel()
{
    using namespace qe::model;
    ModelBuilder builder;
    const amd_id sales = builder.AddNamespace("Sales");
    const amd_id orders = builder.AddQuerySubject(sales, "Orders");
    const amd_id day = builder.AddQuerySubject(sales, "Day");
    builder.AddItem(orders, "Ordered");
    builder.AddItem(orders, "Shipped");
    builder.AddItem(day, "Key");
    builder.AddRelationship(sales, "Ordered on", {orders, kOneToMany}, {day, kOneToOne},
                            "[Sales].[Orders].[Ordered] = [Sales].[Day].[Key]");
    builder.AddRelationship(sales, "Shipped on", {orders, kOneToMany}, {day, kOneToOne},
                            "[Sales].[Orders].[Shipped] = [Sales].[Day].[Key]");
    return builder.Build();
}

/// Asks for orders and days, in a request of its own.
std::vector<amd_id> AskForPath(const std::shared_ptr<const Model>& model,
                               AQE_I_PathSelector& selector)
{
    const std::vector<amd_id> subjects(model->GetSubjects().begin(), model->GetSubjects().end());
    const std::vector<amd_id> joins(model->GetJoins().begin(), model->GetJoins().end());
    qe::model::ModelGateway gateway(model);
    AQE_Governors governors{};
    AQE_RequestContext context;
    context.SetJoinCache(std::make_unique<AQE_JoinCache>());
    const auto refiner =
        AQE_I_Refiner::Create(&gateway, &selector, &governors, &context, true, true);
    std::vector<amd_id> path;
    refiner->ComputeJoinPath(subjects, {}, {}, subjects, joins, {}, path);
    return path;
}

void Show(const char* when, const Model& model, const std::vector<amd_id>& path)
{
    std::cout << when;
    for (const amd_id& join : path)
        std::cout << ' ' << model.GetQualifiedName(join).back();
    std::cout << '\n';
}

} // namespace

int main()
{
    const auto model = MakeModel();
    learning::LearningSelector selector;
    Show("nobody has asked:", *model, AskForPath(model, selector));

    const amd_id shipped = model->FindByName(qe::model::ENameKind::Join, "Shipped on").front();
    for (int person = 0; person < 3; ++person)
        selector.Learn({shipped});
    Show("three people joined by the day of shipping:", *model, AskForPath(model, selector));
    return 0;
}
