#ifndef TOOLKIT_AGENT_AGENTSESSION_H
#define TOOLKIT_AGENT_AGENTSESSION_H

#include "Toolkit/Agent/Revision.h"
#include "Toolkit/Agent/RpcMessage.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace qe::tool {

struct RequestLine;
class ShelfAsker;

/// Who answers, as clients show it.
struct AgentIdentity
{
    std::string name = "qerefine";
    std::string version{};
    /// What a client may tell its model about the server.
    std::string instructions{};
};

/// A call of a tool that is in order, and still to be worked on.
struct PendingCall
{
    nlohmann::json id{};
    std::string tool{};
    nlohmann::json arguments{};
    const Revision* revision = nullptr;
};

/// What comes of one line of a client.
struct Reaction
{
    enum class EForm : std::uint8_t
    {
        Single,
        Batch,
    };

    /// What the client gets, in the order of its requests: answers, and calls that will have one.
    std::vector<std::variant<nlohmann::ordered_json, PendingCall>> answers{};
    /// A batch gets its answers as one list.
    EForm form = EForm::Single;
    /// The ids of earlier requests whose answers nobody waits for any more.
    std::vector<nlohmann::json> cancelled{};
};

/// The server's side of one client's messages. All that it remembers is the revision that a
/// handshake has settled; requests that name their revision themselves rely on nothing.
class AgentSession
{
public:
    explicit AgentSession(AgentIdentity identity) : mIdentity(std::move(identity)) {}

    /// Returns what becomes of the line, whatever it holds.
    [[nodiscard]] Reaction Receive(const RequestLine& line);

    /// Returns the answer to a call. Failures of the tool are answers too.
    [[nodiscard]] nlohmann::ordered_json Answer(const PendingCall& call, ShelfAsker& asker) const;

private:
    void ReceiveBatch(const nlohmann::json& documents, Reaction& reaction);
    void ReceiveMessage(const nlohmann::json& document, Reaction& reaction);
    void React(const RpcMessage& message, Reaction& reaction);
    void Note(const RpcMessage& notification, Reaction& reaction) const;
    [[nodiscard]] const Revision& FindMessageRevision(const RpcMessage& message) const;
    [[nodiscard]] nlohmann::ordered_json Shake(const RpcMessage& message);
    [[nodiscard]] nlohmann::ordered_json Discover() const;
    /// Adds what results of the revision have beside their own members.
    [[nodiscard]] nlohmann::ordered_json Complete(nlohmann::ordered_json result,
                                                  const Revision& revision) const;
    [[nodiscard]] nlohmann::ordered_json GetServerInfo() const;

    AgentIdentity mIdentity;
    /// Null before a handshake.
    const Revision* mShaken = nullptr;
};

} // namespace qe::tool

#endif
