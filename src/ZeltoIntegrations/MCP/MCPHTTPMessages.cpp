#include <ZeltoIntegrations/MCP/MCPHTTPMessages.h>

#include <ZeltoIntegrations/MCP/MCPHTTPResponseRules.h>

#include <utility>

namespace zelto {

URLRequest mcpHTTPRequest(const URL& endpoint, const MCPHTTPState& state, std::optional<std::string> body) {
    URLRequest request(endpoint, body ? "POST" : "DELETE");
    request.headers.set("Accept", "application/json, text/event-stream");
    if (body) {
        request.headers.set("Content-Type", "application/json");
        request.body = HTTPBody(*std::move(body));
    }
    if (state.protocolVersion) {
        request.headers.set(std::string(mcpProtocolVersionField),
                            std::string(rawValue(*state.protocolVersion)));
    }
    if (state.sessionID && isSendableSessionID(*state.sessionID)) {
        request.headers.set(std::string(mcpSessionIDField), *state.sessionID);
    }
    return request;
}

} // namespace zelto
