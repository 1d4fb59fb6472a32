#include "Engine/Expression/ParseReport.h"
#include "Engine/Model/Model.h"
#include "Tests/Toolkit/ReadSource.h"
#include "Toolkit/Import/OpenModel.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace qe;
using namespace qe::tool;
using nlohmann::json;
using Names = std::vector<std::string>;

struct End
{
    std::string subject{};
    Names columns{};
    bool isMany = false;
    /// Negative where it is not known.
    int minimum = -1;
};

/// A join, whichever end it is stated from.
struct Line
{
    std::string text{};
    std::pair<int, int> minima{};
};

Line Describe(End left, End right, bool isActive, bool isPlain)
{
    if (std::tie(right.subject, right.columns) < std::tie(left.subject, left.columns))
        std::swap(left, right);
    std::set<std::string> pairs;
    for (std::size_t i = 0; isPlain && i < left.columns.size(); ++i)
        pairs.insert(left.columns[i] + " = " + right.columns.at(i));
    std::string text = left.subject + (left.isMany ? " many" : " one") + " - " + right.subject +
                       (right.isMany ? " many" : " one") + (isActive ? "" : " inactive");
    for (const std::string& pair : pairs)
        text += ", " + pair;
    return {.text = text, .minima = {left.minimum, right.minimum}};
}

Line DescribeTruth(const json& join)
{
    const std::string cardinality = join["cardinality"];
    return Describe({.subject = join["left"],
                     .columns = join["leftColumns"],
                     .isMany = cardinality.starts_with("many"),
                     .minimum = join.value("leftMin", -1)},
                    {.subject = join["right"],
                     .columns = join["rightColumns"],
                     .isMany = cardinality.ends_with("many"),
                     .minimum = join.value("rightMin", -1)},
                    join.value("active", true), join.value("plain", true));
}

int MinimumOf(const model::CardinalityRange& range)
{
    return range.minimum == model::kZeroToOne.minimum ? 0 : 1;
}

/// Which joins compare more than equal columns is said by the truth alone.
Line DescribeJoin(const model::Model& model, const amd_id& id, const std::set<Names>& complex)
{
    const auto& join = *model.Find(id);
    const auto baseOf = [&](const amd_id& end) {
        const auto& record = *model.Find(end);
        return record.referenced == amd_id() ? record.name : model.Find(record.referenced)->name;
    };
    End left{.subject = baseOf(join.left),
             .isMany = join.leftCardinality.maximum != model::kOneToOne.maximum,
             .minimum = MinimumOf(join.leftCardinality)};
    End right{.subject = baseOf(join.right),
              .isMany = join.rightCardinality.maximum != model::kOneToOne.maximum,
              .minimum = MinimumOf(join.rightCardinality)};
    for (const auto& reference : expression::FindReferences(I18NString(join.text)).references) {
        const bool isLeft = reference.names.at(1).ToStdString() == model.Find(join.left)->name;
        End& end = isLeft && left.columns.size() <= right.columns.size() ? left : right;
        end.columns.push_back(reference.names.back().ToStdString());
    }
    const bool isPlain = complex.count(Names{left.subject, right.subject}) == 0;
    return Describe(left, right, model.Find(join.right)->referenced == amd_id(), isPlain);
}

void Compare(const json& truth, const model::Model& model)
{
    std::set<std::string> subjects;
    for (const amd_id& id : model.GetSubjects())
        if (model.Find(id)->referenced == amd_id())
            subjects.insert(model.Find(id)->name);
    const std::set<std::string> wanted = truth["subjectNames"];
    EXPECT_THAT(subjects, testing::ElementsAreArray(wanted));

    std::set<Names> complex;
    std::multimap<std::string, std::pair<int, int>> expected;
    Names expectedTexts;
    for (const json& join : truth["joins"]) {
        if (!join.value("plain", true))
            complex.insert(
                Names{join["left"].get<std::string>(), join["right"].get<std::string>()});
        const Line line = DescribeTruth(join);
        expected.emplace(line.text, line.minima);
        expectedTexts.push_back(line.text);
    }
    Names texts;
    for (const amd_id& id : model.GetIds(IdClassRelationship)) {
        const Line line = DescribeJoin(model, id, complex);
        texts.push_back(line.text);
        const auto known = expected.find(line.text);
        if (known == expected.end())
            continue;
        EXPECT_TRUE(known->second.first < 0 || known->second.first == line.minima.first)
            << line.text;
        EXPECT_TRUE(known->second.second < 0 || known->second.second == line.minima.second)
            << line.text;
    }
    EXPECT_THAT(texts, testing::UnorderedElementsAreArray(expectedTexts));
}

TEST(Formats, HoldWhatTheirTruthSays)
{
    const auto models = test::ListOpenModels();
    if (models.empty())
        GTEST_SKIP() << "no models at hand";
    for (const test::OpenModelFile& file : models) {
        SCOPED_TRACE(file.source.string());
        try {
            Compare(json::parse(std::ifstream(file.truth)), *OpenModel(file.source).model);
        } catch (const InputError& error) {
            ADD_FAILURE() << error.what();
        }
    }
    EXPECT_GE(models.size(), 23U);
}

} // namespace
