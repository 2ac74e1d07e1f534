#pragma once

#include <ZeltoIntegrations/MCP/MCPClient.h>
#include <ZeltoIntegrations/MCP/MCPHTTPTransport.h>

#include <Support/Completed.h>
#include <Support/MCPServer.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// Calls of the client that are waited for.

template <class T> MCPResult<T> waitedFor(const std::function<void(MCPCompletion<T>)>& begin) {
    Completed<MCPResult<T>> end;
    begin(end.template callback<MCPCompletion<T>>());
    return end.value();
}

inline MCPResult<MCPInitializeResult> connect(MCPClient& client) {
    return waitedFor<MCPInitializeResult>([&](auto done) { client.connect(std::move(done)); });
}

inline MCPResult<void> ping(MCPClient& client) {
    return waitedFor<void>([&](auto done) { client.ping(std::move(done)); });
}

inline MCPResult<std::vector<MCPTool>> listTools(MCPClient& client) {
    return waitedFor<std::vector<MCPTool>>([&](auto done) { client.listTools(std::move(done)); });
}

inline MCPResult<MCPToolCallResult> callTool(MCPClient& client, std::string name,
                                             std::optional<JSONValue> arguments = {}) {
    return waitedFor<MCPToolCallResult>(
        [&](auto done) { client.callTool(name, arguments, std::move(done)); });
}

inline MCPResult<void> disconnect(MCPClient& client) {
    return waitedFor<void>([&](auto done) { client.disconnect(std::move(done)); });
}

inline MCPResult<MCPResponse> send(MCPTransport& transport, std::string id = "1",
                                   std::string method = "ping") {
    return waitedFor<MCPResponse>([&](auto done) {
        transport.send(MCPRequest{MCPRequestID::string(id), method, {}}, std::move(done));
    });
}

inline MCPResult<void> notify(MCPTransport& transport) {
    return waitedFor<void>([&](auto done) { transport.send(MCPNotification{"n", {}}, std::move(done)); });
}

inline MCPResult<void> disconnect(MCPTransport& transport) {
    return waitedFor<void>([&](auto done) { transport.disconnect(std::move(done)); });
}

// The connection's error, if it is one.
template <class T> std::optional<URLErrorCode> connectionError(const MCPResult<T>& result) {
    const auto* error = result ? nullptr : std::get_if<URLError>(&result.error().value);
    return error ? std::optional(error->code) : std::nullopt;
}

// A case of MCPClientError as the failure it is delivered as.
inline std::unexpected<MCPError> failed(MCPClientError error) {
    return failure(MCPError(std::move(error)));
}

} // namespace zelto
