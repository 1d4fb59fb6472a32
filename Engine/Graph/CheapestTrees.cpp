#include "Engine/Graph/CheapestTrees.h"

#include "AQE_LogFile.h"
#include "AUT_I_UserConfiguration.h"
#include "Engine/Graph/Core/TerminalRegion.h"
#include "QERes.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace qe::graph {

namespace {

constexpr int kNoticeLevel = 1;
constexpr long kLogNameText = 340;

const char* ToText(ECount proof)
{
    return proof == ECount::AtLeast ? "at least " : "";
}

/// Returns the key of the setting that raises the limit, or what else the limit is.
const char* ToText(ELimit limit)
{
    switch (limit) {
    case ELimit::Terminals:
        return "512 query subjects in one part";
    case ELimit::Effort:
        return kCheapestTreesEffort.key;
    case ELimit::Memory:
        return kCheapestTreesMegabytes.key;
    case ELimit::Time:
        return kCheapestTreesSeconds.key;
    case ELimit::Trees:
    case ELimit::None:
        break;
    }
    return kCheapestTreesBound.key;
}

// Returns what the limits kept from the result; empty when it is complete.
std::string DescribeShortfall(const SteinerResult& result)
{
    if (result.proof != EProof::BestFound && result.limit == ELimit::None)
        return {};
    std::ostringstream text;
    if (result.proof == EProof::BestFound)
        text << "Cheapest trees: " << ToText(result.limit) << " exceeded, weight " << result.weight
             << ", lower bound " << result.lowerBound << ", not proven";
    else
        text << "Cheapest trees: " << ToText(result.limit) << " exceeded, listed "
             << result.trees.size() << " of " << ToText(result.countProof) << result.count
             << ", weight " << result.weight;
    return text.str();
}

// Searches where the trees can lie: most requests touch a small part of a large model.
SteinerResult FindInRegion(const GraphView& graph, std::span<const NodeIndex> nodes,
                           const SteinerLimits& limits)
{
    std::vector<NodeIndex> terminals(nodes.begin(), nodes.end());
    std::sort(terminals.begin(), terminals.end());
    terminals.erase(std::unique(terminals.begin(), terminals.end()), terminals.end());
    if (terminals.size() < 2 || !terminals.back().IsValid())
        return FindCheapestTrees(graph, terminals, limits);
    const std::optional<TerminalRegion> region = FindRegion(graph, terminals);
    if (!region)
        return {};
    for (NodeIndex& terminal : terminals)
        terminal = region->ToRegion(terminal);
    SteinerResult result = FindCheapestTrees(region->GetView(), terminals, limits);
    for (std::vector<EdgeIndex>& tree : result.trees) {
        for (EdgeIndex& edge : tree)
            edge = region->ToGraph(edge);
    }
    return result;
}

void WriteNotice(const std::string& text)
{
    AQE_LogFile log(QERes::getString(kLogNameText));
    if (!text.empty() && log.GetLogLevel() >= kNoticeLevel)
        log.Log(kNoticeLevel, text);
}

} // namespace

SteinerLimits ReadCheapestTreesLimits()
{
    const AUT_RefPtr<AUT_I_UserConfiguration> settings =
        AUT_I_UserConfiguration::Create(RootKeyUser);
    const auto read = [&settings](const JoinGraphSetting& setting) {
        return std::max(setting.leastValue,
                        settings->GetInt(kJoinGraphSection, setting.key, setting.defaultValue));
    };
    constexpr std::uint64_t kStepsPerUnit = 1'000'000;
    SteinerLimits limits;
    limits.maximumTrees = static_cast<std::size_t>(read(kCheapestTreesBound));
    limits.effort = static_cast<std::uint64_t>(read(kCheapestTreesEffort)) * kStepsPerUnit;
    limits.memory = static_cast<std::size_t>(read(kCheapestTreesMegabytes)) << 20U;
    limits.time = std::chrono::seconds(read(kCheapestTreesSeconds));
    return limits;
}

SteinerResult SearchCheapestTrees(const GraphView& graph, std::span<const NodeIndex> nodes)
{
    SteinerResult result = FindInRegion(graph, nodes, ReadCheapestTreesLimits());
    if (result.connected)
        WriteNotice(DescribeShortfall(result));
    return result;
}

SteinerResult SearchOneTree(const GraphView& graph, std::span<const NodeIndex> nodes)
{
    SteinerLimits limits = ReadCheapestTreesLimits();
    limits.answer = EAnswer::OneTree;
    return FindCheapestTrees(graph, nodes, limits);
}

void LogMoreSpanningTrees(std::size_t listed)
{
    WriteNotice("Spanning trees: listed " + std::to_string(listed) + ", there are more");
}

} // namespace qe::graph
