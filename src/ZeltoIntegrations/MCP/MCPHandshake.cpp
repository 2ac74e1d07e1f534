#include <ZeltoIntegrations/MCP/MCPHandshakeInternal.h>

#include <ZeltoIntegrations/MCP/MCPResultsInternal.h>

namespace zelto {

void MCPHandshake::begin(const MCPMessageSender::Call& call,
                         MCPCompletion<MCPInitializeResult> completion) const {
    auto& transport = sender_.transport();
    transport.clearSession();
    transport.setProtocolVersion(std::nullopt);
    auto params = makeParams(MCPInitializeParams{.capabilities = capabilities_, .clientInfo = clientInfo_});
    if (!params) {
        return fail(std::move(params.error()), std::move(completion));
    }
    sender_.request(
        call, MCPMessageSender::Place::anywhere, "initialize", *std::move(params),
        [self = *this, call, completion = std::move(completion)](MCPResult<JSONValue> value) mutable {
            auto result = decodeResult<MCPInitializeResult>(std::move(value));
            if (!result) {
                return self.fail(std::move(result.error()), std::move(completion));
            }
            self.confirm(call, *std::move(result), std::move(completion));
        });
}

void MCPHandshake::confirm(const MCPMessageSender::Call& call, MCPInitializeResult result,
                           MCPCompletion<MCPInitializeResult> completion) const {
    sender_.transport().setProtocolVersion(result.protocolVersion);
    sender_.notify(call, "notifications/initialized",
                   [self = *this, result = std::move(result),
                    completion = std::move(completion)](MCPResult<void> sent) mutable {
                       if (!sent) {
                           return self.fail(std::move(sent.error()), std::move(completion));
                       }
                       completion(std::move(result));
                   });
}

void MCPHandshake::fail(MCPError error, MCPCompletion<MCPInitializeResult> completion) const {
    sender_.transport().clearSession();
    sender_.transport().setProtocolVersion(std::nullopt);
    completion(failure(std::move(error)));
}

} // namespace zelto
