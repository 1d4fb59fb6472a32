#include "Toolkit/Import/Formats/TmdlWords.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Text/Misspelling.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace qe::tool {

namespace {

/// What holds the objects of a model comes first, then objects of which joins are made.
constexpr std::size_t kContainers = 6;
constexpr std::size_t kNeeded = 10;
constexpr std::array<std::string_view, 55> kObjects{"create",
                                                    "createOrReplace",
                                                    "alter",
                                                    "database",
                                                    "model",
                                                    "delete",
                                                    "table",
                                                    "column",
                                                    "relationship",
                                                    "partition",
                                                    "alternateOf",
                                                    "analyticsAIMetadata",
                                                    "annotation",
                                                    "attributeHierarchy",
                                                    "bindingInfo",
                                                    "calculationExpression",
                                                    "calculationGroup",
                                                    "calculationItem",
                                                    "calendar",
                                                    "calendarColumnGroup",
                                                    "changedProperty",
                                                    "columnPermission",
                                                    "culture",
                                                    "cultureInfo",
                                                    "dataCoverageDefinition",
                                                    "dataSource",
                                                    "detailRowsDefinition",
                                                    "excludedArtifact",
                                                    "expression",
                                                    "extendedProperty",
                                                    "formatStringDefinition",
                                                    "function",
                                                    "groupByColumn",
                                                    "hierarchy",
                                                    "kpi",
                                                    "level",
                                                    "linguisticMetadata",
                                                    "measure",
                                                    "member",
                                                    "namedExpression",
                                                    "perspective",
                                                    "perspectiveColumn",
                                                    "perspectiveHierarchy",
                                                    "perspectiveMeasure",
                                                    "perspectiveSet",
                                                    "perspectiveTable",
                                                    "queryGroup",
                                                    "refreshPolicy",
                                                    "relatedColumnDetails",
                                                    "role",
                                                    "roleMembership",
                                                    "tablePermission",
                                                    "translation",
                                                    "translations",
                                                    "variation"};

constexpr std::array<std::string_view, 5> kBooleans{"isActive", "isHidden", "isKey", "isNullable",
                                                    "relyOnReferentialIntegrity"};

/// Properties that are read, other than those.
constexpr std::array<std::string_view, 14> kTexts{
    "fromColumn",
    "toColumn",
    "fromCardinality",
    "toCardinality",
    "sourceColumn",
    "type",
    "crossFilteringBehavior",
    "joinOnDateBehavior",
    "source",
    "description",
    "entityName",
    "schemaName",
    "query",
    "expression",
};

std::string_view FindSpelling(std::string_view word, std::span<const std::string_view> known)
{
    const std::string folded = ascii::ToLower(std::string(word));
    const auto found = std::find_if(known.begin(), known.end(), [&](std::string_view other) {
        return ascii::ToLower(std::string(other)) == folded;
    });
    return found == known.end() ? std::string_view() : *found;
}

} // namespace

TmdlWord RecogniseTmdlWord(std::string_view word)
{
    if (const std::string_view known = FindSpelling(word, kObjects); !known.empty())
        return {.known = known};
    const std::string_view meant = FindMeantWord(word, kObjects);
    const auto needed = std::find(kObjects.begin(), kObjects.begin() + kNeeded, meant);
    return {.meant = meant, .isNeeded = needed != kObjects.begin() + kNeeded};
}

bool IsTmdlContainer(std::string_view word)
{
    const auto* const end = kObjects.begin() + kContainers;
    return std::find(kObjects.begin(), end, word) != end;
}

std::string SpellTmdlProperty(std::string_view name)
{
    std::string_view spelling = FindSpelling(name, kBooleans);
    if (spelling.empty())
        spelling = FindSpelling(name, kTexts);
    return std::string(spelling.empty() ? name : spelling);
}

bool IsTmdlBoolean(std::string_view property)
{
    return std::find(kBooleans.begin(), kBooleans.end(), property) != kBooleans.end();
}

} // namespace qe::tool
