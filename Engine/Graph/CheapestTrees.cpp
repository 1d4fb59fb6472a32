#include "Engine/Graph/CheapestTrees.h"

#include "AQE_LogFile.h"
#include "AUT_I_UserConfiguration.h"
#include "QERes.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <sstream>
#include <string>

namespace qe::graph {

namespace {

constexpr int kNoticeLevel = 1;
constexpr long kLogNameText = 340;

const char* ToText(ECount proof)
{
    return proof == ECount::AtLeast ? "at least " : "";
}

// Returns what the limits kept from the result; empty when it is complete.
std::string DescribeShortfall(const SteinerResult& result)
{
    std::ostringstream text;
    if (result.proof == EProof::BestFound)
        text << "Cheapest trees: budget exceeded, weight " << result.weight << ", lower bound "
             << result.lowerBound << ", not proven";
    else if (result.count > result.trees.size() || result.countProof == ECount::AtLeast)
        text << "Cheapest trees: listed " << result.trees.size() << " of "
             << ToText(result.countProof) << result.count << ", weight " << result.weight;
    return text.str();
}

void LogShortfall(const SteinerResult& result)
{
    AQE_LogFile log(QERes::getString(kLogNameText));
    if (log.GetLogLevel() < kNoticeLevel)
        return;
    const std::string text = DescribeShortfall(result);
    if (!text.empty())
        log.Log(kNoticeLevel, text);
}

} // namespace

SteinerLimits ReadCheapestTreesLimits()
{
    const AUT_RefPtr<AUT_I_UserConfiguration> settings =
        AUT_I_UserConfiguration::Create(RootKeyUser);
    const auto read = [&settings](const JoinGraphSetting& setting) {
        return std::max(1, settings->GetInt(kJoinGraphSection, setting.key, setting.defaultValue));
    };
    SteinerLimits limits;
    limits.maximumTrees = static_cast<std::size_t>(read(kCheapestTreesBound));
    limits.time = std::chrono::seconds(read(kCheapestTreesSeconds));
    limits.memory = static_cast<std::size_t>(read(kCheapestTreesMegabytes)) << 20U;
    return limits;
}

SteinerResult SearchCheapestTrees(const GraphView& graph, std::span<const NodeIndex> nodes)
{
    SteinerResult result = FindCheapestTrees(graph, nodes, ReadCheapestTreesLimits());
    if (result.connected)
        LogShortfall(result);
    return result;
}

} // namespace qe::graph
