#pragma once

#include <ZeltoIntegrations/MCP/MCPClient.h>
#include <ZeltoIntegrations/MCP/MCPHTTPTransport.h>

#include <Support/Completed.h>
#include <Support/MCPServer.h>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zelto {

// The result of MCPServer::log.
using Log = std::vector<std::string>;

inline MCPHTTPTransport transportTo(const TestHTTPServer& server,
                                    std::shared_ptr<MCPAuthorizationProvider> provider = nullptr,
                                    URLSessionConfiguration configuration = {}) {
    return MCPHTTPTransport(server.url("/mcp"), std::move(provider), std::nullopt, std::move(configuration));
}

// Calls of the client, waiting for their results.

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

inline Log namesOf(const MCPResult<std::vector<MCPTool>>& tools) {
    Log names;
    for (const auto& each : tools.value()) {
        names.push_back(each.name);
    }
    return names;
}

// A page of tools with names of one letter, as the result of tools/list.
inline std::string page(std::string_view names, std::optional<std::string> cursor = {}) {
    JSONValue::Array tools;
    for (const char each : names) {
        tools.push_back(JSONObject{{"name", std::string(1, each)}, {"inputSchema", JSONObject()}});
    }
    JSONObject result{{"tools", std::move(tools)}};
    if (cursor) {
        result.set("nextCursor", *cursor);
    }
    return JSONValue(std::move(result)).text().value();
}

// Passes the n-th request after the handshakes to the function.
inline MCPServer::Handler numbered(std::function<PlayedResponse(const ReceivedRequest&, int)> response) {
    return [response = std::move(response), count = std::make_shared<std::atomic<int>>(0)](
               const ReceivedRequest& request) { return response(request, ++*count); };
}

// The connection's error, if it is one.
template <class T> std::optional<URLErrorCode> connectionError(const MCPResult<T>& result) {
    const auto* error = result ? nullptr : std::get_if<URLError>(&result.error().value);
    return error ? std::optional(error->code) : std::nullopt;
}

// An error in the form in which failures are delivered.
inline std::unexpected<MCPError> failed(MCPError error) {
    return failure(std::move(error));
}

} // namespace zelto
