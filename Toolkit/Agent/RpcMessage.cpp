#include "Toolkit/Agent/RpcMessage.h"

namespace qe::tool {

namespace {

bool IsRpcId(const nlohmann::json& value)
{
    return value.is_string() || value.is_number_integer();
}

/// Returns the member of the object, or null when there is none.
const nlohmann::json* FindMember(const nlohmann::json& object, const char* key)
{
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

} // namespace

std::optional<RpcMessage> ReadRpcMessage(const nlohmann::json& document)
{
    const auto reject = [](const char* text) { throw RpcFailure(ERpcError::InvalidRequest, text); };
    if (!document.is_object())
        reject("A message must be an object");
    const nlohmann::json* const version = FindMember(document, "jsonrpc");
    if (version == nullptr || *version != "2.0")
        reject("/jsonrpc: must be \"2.0\"");
    const nlohmann::json* const method = FindMember(document, "method");
    if (method == nullptr && (document.contains("result") || document.contains("error")))
        return std::nullopt;
    if (method == nullptr || !method->is_string())
        reject("/method: must be a string");
    RpcMessage message{.method = method->get<std::string>()};
    if (const nlohmann::json* const id = FindMember(document, "id")) {
        if (!IsRpcId(*id))
            reject("/id: must be a string or a whole number");
        message.id = *id;
    }
    if (const nlohmann::json* const params = FindMember(document, "params")) {
        if (!params->is_object())
            throw RpcFailure(ERpcError::InvalidParameters, "/params: must be an object");
        message.params = *params;
    }
    return message;
}

nlohmann::json FindRpcId(const nlohmann::json& document)
{
    if (!document.is_object())
        return {};
    const nlohmann::json* const id = FindMember(document, "id");
    return id != nullptr && IsRpcId(*id) ? *id : nlohmann::json();
}

nlohmann::ordered_json MakeRpcResult(const nlohmann::json& id, nlohmann::ordered_json result)
{
    return {{"jsonrpc", "2.0"}, {"id", id}, {"result", std::move(result)}};
}

nlohmann::ordered_json MakeRpcError(const nlohmann::json& id, const RpcFailure& failure)
{
    nlohmann::ordered_json answer{{"jsonrpc", "2.0"}};
    if (!id.is_null())
        answer["id"] = id;
    nlohmann::ordered_json& error = answer["error"];
    error = {{"code", static_cast<std::int32_t>(failure.GetCode())}, {"message", failure.what()}};
    if (!failure.GetData().is_null())
        error["data"] = failure.GetData();
    return answer;
}

} // namespace qe::tool
