#include "JoinTree/JoinTreeLog.h"

#include "AUT_RefPtr.h"
#include "Joins/HostNumbers.h"
#include "QERes.h"
#include "amdi_gateway.h"
#include "amdi_object.h"

#include <cstdint>
#include <sstream>
#include <string>

namespace qe {

namespace {

constexpr int kLevel = 7;

std::string GetAddressText(const JoinDistance* distance)
{
    std::ostringstream text;
    text << "0x" << std::hex << reinterpret_cast<std::uintptr_t>(distance);
    return text.str();
}

} // namespace

JoinTreeLog::JoinTreeLog(amdi_gateway* gateway, const JoinEndsReader& endsReader)
    : mGateway(gateway), mEndsReader(endsReader), mFile(QERes::getString(host::kComponentNameText))
{}

bool JoinTreeLog::IsOn() const
{
    return mFile.GetLogLevel() >= kLevel;
}

void JoinTreeLog::Write(std::string_view text)
{
    mFile.Log(kLevel, I18NString(text));
}

I18NString JoinTreeLog::GetName(const amd_id& id) const
{
    const amdi_object* const object = mGateway == nullptr ? nullptr : mGateway->GetObject(id);
    return object == nullptr ? I18NString() : object->GetName();
}

I18NString JoinTreeLog::GetEndName(const amd_id& id) const
{
    return id.IsValid() ? GetName(id) : I18NString("sss");
}

void JoinTreeLog::LogEntities(const Ids& entities)
{
    if (!IsOn())
        return;
    Write("number of entities: " + std::to_string(entities.size()));
    for (const amd_id& entity : entities) {
        std::string line = "entity id=" + ToText(entity) + " ";
        if (entity.IsValid())
            line += GetName(entity).View();
        Write(line);
    }
}

void JoinTreeLog::LogPath(const Ids& path, int weight)
{
    if (!IsOn())
        return;
    std::ostringstream line;
    line << "weight:" << weight;
    const char* separator = " joins:\n    ";
    for (const amd_id& join : path) {
        const JoinEnds ends = mEndsReader.GetJoinEnds(join).value_or(JoinEnds());
        line << separator << "id=" << ToText(join) << " left=" << ToText(ends.left)
             << " right=" << ToText(ends.right) << " (" << GetEndName(ends.left) << ", "
             << GetEndName(ends.right) << ")";
        separator = "\n    ";
    }
    Write(line.str());
}

void JoinTreeLog::LogAdded(const JoinDistance& distance)
{
    if (IsOn())
        Write("added distance: " + GetAddressText(&distance) + " ");
}

void JoinTreeLog::LogDistanceCount(std::size_t count)
{
    if (IsOn())
        Write("number of shortest distances: " + std::to_string(count));
}

void JoinTreeLog::LogProcessing(const JoinDistance* distance)
{
    if (!IsOn())
        return;
    const std::string weight = distance == nullptr ? "NULL" : std::to_string(distance->weight);
    Write("processing distance: " + GetAddressText(distance) + " " + weight);
}

void JoinTreeLog::LogRemaining(const PendingDistances& pending)
{
    if (!IsOn())
        return;
    Write("num shortest distances remaining: " + std::to_string(pending.size()));
    for (const auto& distance : pending)
        Write("distance " + GetAddressText(distance.Get()) +
              " w=" + std::to_string(distance->weight) +
              " fromIndex=" + std::to_string(distance->fromIndex) +
              " toIndex=" + std::to_string(distance->toIndex));
}

void JoinTreeLog::LogLibraryTree(std::size_t nodeCount, std::size_t edgeCount)
{
    if (!IsOn())
        return;
    Write("Q GetShortestPathTree num nodes/query subjects: " + std::to_string(nodeCount));
    Write("Q GetShortestPathTree num edges/joins: " + std::to_string(edgeCount));
}

void JoinTreeLog::LogClosingAt(const amd_id& entity, std::size_t joinCount)
{
    if (IsOn())
        Write("AA for id: " + ToText(entity) + " num joins:" + std::to_string(joinCount));
}

void JoinTreeLog::LogClosingJoin(const JoinEnds& ends)
{
    if (IsOn())
        Write("AA adding join left=" + ToText(ends.left) + " right=" + ToText(ends.right));
}

} // namespace qe
