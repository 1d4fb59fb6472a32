#ifndef TOOLKIT_AGENT_RPCMESSAGE_H
#define TOOLKIT_AGENT_RPCMESSAGE_H

#include <cstdint>
#include <exception>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace qe::tool {

/// Why a message gets an error instead of a result. The numbers are those of JSON-RPC 2.0 and of
/// the Model Context Protocol.
enum class ERpcError : std::int32_t
{
    NoJson = -32700,
    InvalidRequest = -32600,
    UnknownMethod = -32601,
    InvalidParameters = -32602,
    Internal = -32603,
    UnknownRevision = -32022,
};

/// A message cannot be answered with a result.
class RpcFailure : public std::exception
{
public:
    explicit RpcFailure(ERpcError code, std::string text, nlohmann::ordered_json data = {})
        : mCode(code), mText(std::move(text)), mData(std::move(data))
    {}

    [[nodiscard]] const char* what() const noexcept override { return mText.c_str(); }
    [[nodiscard]] ERpcError GetCode() const { return mCode; }
    /// Returns what programs can read of the failure; null for nothing.
    [[nodiscard]] const nlohmann::ordered_json& GetData() const { return mData; }

private:
    ERpcError mCode;
    std::string mText;
    nlohmann::ordered_json mData;
};

/// A request, or without an id a notification, which gets no answer.
struct RpcMessage
{
    /// A text or a whole number; null: none.
    nlohmann::json id{};
    std::string method{};
    /// An object; empty where the message has none.
    nlohmann::json params = nlohmann::json::object();

    [[nodiscard]] bool IsNotification() const { return id.is_null(); }
};

/// Returns the request or notification that the document is; nothing for a response, which asks for
/// nothing. Throws RpcFailure for what is neither.
[[nodiscard]] std::optional<RpcMessage> ReadRpcMessage(const nlohmann::json& document);

/// Returns the id of a document that may be no message; null when none can be read.
[[nodiscard]] nlohmann::json FindRpcId(const nlohmann::json& document);

/// Returns the answer to the request with that id.
[[nodiscard]] nlohmann::ordered_json MakeRpcResult(const nlohmann::json& id,
                                                   nlohmann::ordered_json result);
/// Returns the answer that tells a failure. A null id is left out.
[[nodiscard]] nlohmann::ordered_json MakeRpcError(const nlohmann::json& id,
                                                  const RpcFailure& failure);

} // namespace qe::tool

#endif
