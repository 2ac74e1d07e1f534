// Calls of an MCPClient that wait for their results, for programs that have nothing else to do meanwhile.
// Never to be used on the client's own queue, on which completions run: what it waits for would wait for it.

#pragma once

#include <ZeltoIntegrations/MCP/MCPClient.h>

#include <future>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zelto::blocking {

// The result of the operation that the function begins with the completion that it is given.
template <class T, class F> MCPResult<T> resultOf(F begin) {
    // Shared, since the completion may still be on its way out when the result has been taken.
    const auto promise = std::make_shared<std::promise<MCPResult<T>>>();
    auto result = promise->get_future();
    begin(MCPCompletion<T>([promise](MCPResult<T> value) { promise->set_value(std::move(value)); }));
    return result.get();
}

inline MCPResult<MCPInitializeResult> connect(MCPClient& client, const MCPCallOptions& options = {}) {
    return resultOf<MCPInitializeResult>([&](auto done) { client.connect(std::move(done), options); });
}

inline MCPResult<void> ping(MCPClient& client, const MCPCallOptions& options = {}) {
    return resultOf<void>([&](auto done) { client.ping(std::move(done), options); });
}

inline MCPResult<std::vector<MCPTool>> listTools(MCPClient& client, const MCPCallOptions& options = {}) {
    return resultOf<std::vector<MCPTool>>([&](auto done) { client.listTools(std::move(done), options); });
}

inline MCPResult<MCPToolCallResult> callTool(MCPClient& client, std::string name,
                                             std::optional<JSONValue> arguments = {},
                                             const MCPCallOptions& options = {}) {
    return resultOf<MCPToolCallResult>(
        [&](auto done) { client.callTool(std::move(name), std::move(arguments), std::move(done), options); });
}

inline MCPResult<void> disconnect(MCPClient& client, const MCPCallOptions& options = {}) {
    return resultOf<void>([&](auto done) { client.disconnect(std::move(done), options); });
}

} // namespace zelto::blocking
