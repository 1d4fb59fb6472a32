#ifndef TESTS_SOURCE_REFINERREQUEST_H
#define TESTS_SOURCE_REFINERREQUEST_H

#include "AQE_Governors.h"
#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "Refiner.h"
#include "Tests/Support/CountingGateway.h"
#include "Tests/Support/ModelText.h"
#include "Tests/Support/RecordingSelector.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qe::test {

/// Six ways to connect Orders, Region and Date with three joins each: over the customer or the
/// store, with the customer joined twice, and with the date at either end.
inline constexpr const char* kSales = R"(
    folder Sales
    Orders >- Customer : oc; Orders >-< Customer : occ; Orders >- Store : os
    Customer >- Region : cr; Orders >- Date : od; Customer >- Date : cd
    folder Sales/Archive
    Store >- Region : sr
)";

/// Letters for the paths, in the order of their signatures. The two algorithms list the joins of
/// one of them in another order.
inline const std::map<char, std::string> kPaths{
    {'a', "oc, cr, cd"}, {'b', "occ, cr, cd"}, {'c', "od, cd, cr"}, {'C', "cr, od, cd"},
    {'d', "oc, cr, od"}, {'e', "occ, cr, od"}, {'f', "os, od, sr"},
};

/// A refiner over a model, with a join cache and a selector that notes what it is shown.
struct Request
{
    using Ids = std::vector<amd_id>;
    using Texts = std::vector<std::string>;

    explicit Request(std::string_view text, bool facts = false, bool straight = false,
                     AQE_Governors* governors = nullptr)
        : model(text), gateway(model.GetGateway())
    {
        context.SetJoinCache(std::make_unique<AQE_JoinCache>());
        refiner = AQE_I_Refiner::Create(&gateway, &selector, governors, &context, facts, straight);
    }

    std::string JoinPath(std::string_view subjects, std::string_view favoured = "",
                         std::string_view required = "")
    {
        Ids path;
        refiner->ComputeJoinPath(model.Ids(subjects), model.Ids(favoured), model.Ids(required),
                                 model.Subjects(), model.Joins(), {}, path);
        return model.Names(path);
    }

    bool BestPaths(std::string_view subjects, Texts& texts, std::string_view avoided = "")
    {
        std::vector<Ids> paths;
        const bool result =
            refiner->ComputeBestJoinPaths(model.Ids(subjects), {}, {}, model.Subjects(),
                                          model.Joins(), paths, model.Ids(avoided), {});
        for (const Ids& path : paths)
            texts.push_back(model.Names(path));
        return result;
    }

    std::string JoinedSubjects(std::string_view subjects)
    {
        Ids joined;
        refiner->GetJoinedQuerySubjects(model.Ids(subjects), model.Subjects(), model.Joins(),
                                        joined);
        return model.Names(joined);
    }

    /// Returns "path / weight / ends".
    std::string Between(std::string_view first, std::string_view second,
                        std::string_view avoided = "", std::string_view furtherAvoided = "")
    {
        const amd_id before{1, 2, 3};
        Ids path{before};
        Ids ends{before};
        int weight = 0;
        refiner->ComputeJoinPathBetween(model.Ids(first), model.Ids(avoided), model.Ids(second),
                                        model.Ids(furtherAvoided), {}, {}, model.Subjects(),
                                        model.Joins(), path, weight, ends);
        EXPECT_EQ(ends.at(0), before) << "appended";
        ends.erase(ends.begin());
        return model.Names(path) + " / " + std::to_string(weight) + " / " + model.Names(ends);
    }

    Texts BestBetween(std::string_view first, std::string_view second)
    {
        const AQE_Refiner::EndPair before{{1, 2, 3}, {4, 5, 6}};
        std::vector<Ids> paths{{{1, 2, 3}}};
        std::vector<AQE_Refiner::EndPair> ends{before};
        int weight = 0;
        refiner->ComputeBestJoinPathsBetween(model.Ids(first), {}, model.Ids(second), {}, {}, {},
                                             model.Subjects(), model.Joins(), paths, weight, ends);
        EXPECT_EQ(ends.at(0), before) << "appended";
        ends.erase(ends.begin());
        Texts texts{std::to_string(weight)};
        for (std::size_t index = 0; index < paths.size(); ++index)
            texts.push_back(model.Names(paths[index]) + " / " +
                            model.Names({ends.at(index).first, ends.at(index).second}));
        EXPECT_EQ(ends.size(), paths.size());
        return texts;
    }

    ModelText model;
    CountingGateway gateway;
    AQE_RequestContext context;
    RecordingSelector selector;
    AUT_RefPtr<AQE_I_Refiner> refiner;
};

} // namespace qe::test

#endif
