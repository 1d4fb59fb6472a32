#include "Toolkit/Agent/AgentSession.h"

#include "Engine/Model/Names.h"
#include "Toolkit/Agent/ToolCall.h"
#include "Toolkit/Agent/ToolList.h"
#include "Toolkit/Batch/LineReader.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/JsonProblems.h"
#include "Toolkit/Text/JsonText.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kParamsPointer = "/params";
constexpr const char* kMetaKey = "_meta";
constexpr const char* kVersionKey = "io.modelcontextprotocol/protocolVersion";
constexpr const char* kCapabilitiesKey = "io.modelcontextprotocol/clientCapabilities";
constexpr const char* kServerKey = "io.modelcontextprotocol/serverInfo";

/// How long clients may keep the list of tools and what a server says of itself, in milliseconds:
/// neither changes while it runs.
constexpr int kMostAge = 3'600'000;

/// Returns the document that the line is. Throws RpcFailure.
nlohmann::json ParseLine(const RequestLine& line)
{
    if (line.isTooLong)
        throw RpcFailure(ERpcError::InvalidRequest, "The message is too long");
    JsonProblems problems;
    nlohmann::json document;
    try {
        document = ParseJson(line.text, problems);
    } catch (const InputError& mistakes) {
        throw RpcFailure(ERpcError::NoJson, mistakes.GetProblems().front().text);
    }
    try {
        problems.ThrowIfAny();
    } catch (const InputError& mistakes) {
        throw RpcFailure(ERpcError::InvalidRequest, mistakes.what());
    }
    return document;
}

/// Returns the text of the member. Throws RpcFailure when there is none.
/// Returns the text under the key of an object, which stands at the pointer in its message.
std::string RequireText(const nlohmann::json& object, const std::string& pointer, const char* key)
{
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string())
        throw RpcFailure(ERpcError::InvalidParameters,
                         ChildPointer(pointer, key) + ": must be a string");
    return found->get<std::string>();
}

RpcFailure RefuseRevision(const std::string& asked)
{
    return RpcFailure(ERpcError::UnknownRevision,
                      "The protocol's revision \"" + ToDisplayText(asked) + "\" is not spoken here",
                      {{"supported", ListRevisionNames()}, {"requested", asked}});
}

PendingCall ReadCall(const RpcMessage& message, const Revision& revision)
{
    PendingCall call{.id = message.id,
                     .tool = RequireText(message.params, kParamsPointer, "name"),
                     .arguments = message.params.value("arguments", nlohmann::json::object()),
                     .revision = &revision};
    const std::vector<std::string> tools = ListToolNames();
    if (std::find(tools.begin(), tools.end(), call.tool) == tools.end())
        throw RpcFailure(ERpcError::InvalidParameters,
                         "There is no tool \"" + ToDisplayText(call.tool) + '"' +
                             ToHint(model::NearestNames(call.tool, {tools.begin(), tools.end()})));
    if (!call.arguments.is_object())
        throw RpcFailure(ERpcError::InvalidParameters, "/params/arguments: must be an object");
    return call;
}

Json ListAllTools(const RpcMessage& message, const Revision& revision)
{
    if (message.params.contains("cursor"))
        throw RpcFailure(ERpcError::InvalidParameters,
                         "/params/cursor: the list of tools has one page");
    return {{"tools", ListTools(revision)}};
}

Json MakeCallResult(const ToolResult& result, const Revision& revision)
{
    Json told{{"content", Json::array({{{"type", "text"}, {"text", result.text}}})}};
    const bool isStructured = revision.structure == Revision::EStructure::Structured;
    if (!result.content.is_null() && isStructured)
        told["structuredContent"] = result.content;
    else if (!result.content.is_null())
        told["content"].push_back({{"type", "text"}, {"text", ToJsonLine(result.content)}});
    told["isError"] = result.isMistake;
    return told;
}

} // namespace

Reaction AgentSession::Receive(const RequestLine& line)
{
    Reaction reaction;
    try {
        const nlohmann::json document = ParseLine(line);
        if (document.is_array())
            ReceiveBatch(document, reaction);
        else
            ReceiveMessage(document, reaction);
    } catch (const RpcFailure& failure) {
        reaction.answers.emplace_back(MakeRpcError({}, failure));
    } catch (const std::exception& failure) {
        reaction.answers.emplace_back(
            MakeRpcError({}, RpcFailure(ERpcError::Internal, failure.what())));
    }
    return reaction;
}

void AgentSession::ReceiveBatch(const nlohmann::json& documents, Reaction& reaction)
{
    if (mShaken == nullptr || mShaken->batches != Revision::EBatches::Taken)
        throw RpcFailure(ERpcError::InvalidRequest, "This revision of the protocol has no batches");
    if (documents.empty())
        throw RpcFailure(ERpcError::InvalidRequest, "A batch must not be empty");
    reaction.form = Reaction::EForm::Batch;
    for (const nlohmann::json& document : documents)
        ReceiveMessage(document, reaction);
}

void AgentSession::ReceiveMessage(const nlohmann::json& document, Reaction& reaction)
{
    try {
        if (const auto message = ReadRpcMessage(document))
            React(*message, reaction);
    } catch (const RpcFailure& failure) {
        const bool asksForAnswer = !document.is_object() || document.contains("id") ||
                                   failure.GetCode() == ERpcError::InvalidRequest;
        if (asksForAnswer)
            reaction.answers.emplace_back(MakeRpcError(FindRpcId(document), failure));
    }
}

void AgentSession::React(const RpcMessage& message, Reaction& reaction)
{
    if (message.IsNotification())
        return Note(message, reaction);
    const auto answer = [&](Json result) {
        reaction.answers.emplace_back(MakeRpcResult(message.id, std::move(result)));
    };
    if (message.method == "initialize")
        return answer(Shake(message));
    if (message.method == "ping" && !message.params.contains(kMetaKey))
        return answer(Json::object());
    const Revision& revision = FindMessageRevision(message);
    const bool hasHandshake = revision.opening == Revision::EOpening::Handshake;
    if (message.method == "tools/call")
        reaction.answers.emplace_back(ReadCall(message, revision));
    else if (message.method == "tools/list")
        answer(Complete(ListAllTools(message, revision), revision));
    else if (message.method == "ping" && hasHandshake)
        answer(Json::object());
    else if (message.method == "server/discover" && !hasHandshake)
        answer(Complete(Discover(), revision));
    else
        throw RpcFailure(ERpcError::UnknownMethod,
                         "There is no method \"" + ToDisplayText(message.method) + '"');
}

void AgentSession::Note(const RpcMessage& notification, Reaction& reaction) const
{
    if (notification.method == "notifications/cancelled" &&
        notification.params.contains("requestId"))
        reaction.cancelled.push_back(notification.params["requestId"]);
}

const Revision& AgentSession::FindMessageRevision(const RpcMessage& message) const
{
    const auto meta = message.params.find(kMetaKey);
    if (meta != message.params.end() && meta->is_object() && meta->contains(kVersionKey)) {
        const std::string name =
            RequireText(*meta, ChildPointer(kParamsPointer, kMetaKey), kVersionKey);
        const Revision* const revision = FindRevision(name);
        if (revision == nullptr || revision->opening == Revision::EOpening::Handshake)
            throw RefuseRevision(name);
        const auto capabilities = meta->find(kCapabilitiesKey);
        if (capabilities == meta->end() || !capabilities->is_object())
            throw RpcFailure(ERpcError::InvalidParameters,
                             "/params/_meta: must hold " + std::string(kCapabilitiesKey));
        return *revision;
    }
    if (mShaken == nullptr)
        throw RpcFailure(ERpcError::InvalidParameters, "/params/_meta: must hold " +
                                                           std::string(kVersionKey) +
                                                           ", or \"initialize\" must come first");
    return *mShaken;
}

Json AgentSession::Shake(const RpcMessage& message)
{
    mShaken = &NegotiateRevision(RequireText(message.params, kParamsPointer, "protocolVersion"));
    return {{"protocolVersion", mShaken->name},
            {"capabilities", {{"tools", Json::object()}}},
            {"serverInfo", GetServerInfo()},
            {"instructions", mIdentity.instructions}};
}

Json AgentSession::Discover() const
{
    return {{"supportedVersions", ListRevisionNames()},
            {"capabilities", {{"tools", Json::object()}}},
            {"instructions", mIdentity.instructions}};
}

Json AgentSession::Complete(Json result, const Revision& revision) const
{
    if (revision.opening == Revision::EOpening::Handshake)
        return result;
    result["resultType"] = "complete";
    if (!result.contains("content")) {
        result["ttlMs"] = kMostAge;
        result["cacheScope"] = "public";
    }
    result[kMetaKey] = {{kServerKey, GetServerInfo()}};
    return result;
}

Json AgentSession::GetServerInfo() const
{
    return {{"name", mIdentity.name}, {"version", mIdentity.version}};
}

Json AgentSession::Answer(const PendingCall& call, ShelfAsker& asker) const
{
    try {
        const ToolResult result = CallTool(asker, call.tool, call.arguments);
        return MakeRpcResult(call.id,
                             Complete(MakeCallResult(result, *call.revision), *call.revision));
    } catch (const std::bad_alloc&) {
        return MakeRpcError(call.id, RpcFailure(ERpcError::Internal, "Out of memory"));
    } catch (const std::exception& failure) {
        return MakeRpcError(call.id, RpcFailure(ERpcError::Internal, failure.what()));
    }
}

} // namespace qe::tool
