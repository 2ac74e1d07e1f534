#include <ZeltoIntegrations/MCP/MCPMessageSenderInternal.h>

#include <Platform/ASCII.h>
#include <Platform/UUID.h>

namespace zelto {

namespace {

MCPRequestID freshID() {
    return MCPRequestID::string(toASCIIUpper(uuid()));
}

MCPResult<JSONValue> resultOf(MCPResult<MCPResponse> response) {
    if (!response) {
        return failure(std::move(response.error()));
    }
    if (response->error) {
        return failure(MCPError(MCPClientError::jsonRPCFailure(*std::move(response->error))));
    }
    if (!response->result) {
        return failure(MCPError(MCPClientError::missingJSONRPCResult()));
    }
    return *std::move(response->result);
}

template <class T> void endBy(const std::weak_ptr<MCPOnceCompletion<T>>& completion, const MCPError& reason) {
    if (const auto end = completion.lock()) {
        (*end)(failure(reason));
    }
}

} // namespace

void MCPMessageSender::request(const Call& call, Place place, std::string method,
                               std::optional<JSONValue> params, MCPCompletion<JSONValue> completion) const {
    if (auto reason = call->reasonToEnd()) {
        return completion(failure(*std::move(reason)));
    }
    const auto id = freshID();
    const auto end = std::make_shared<MCPOnceCompletion<MCPResponse>>(
        [completion = std::move(completion)](MCPResult<MCPResponse> response) mutable {
            completion(resultOf(std::move(response)));
        });
    // Weak, since the completion holds the call.
    call->setInterruption([id, weakEnd = std::weak_ptr(end),
                           weakTransport = std::weak_ptr(transport_)](const MCPError& reason) {
        const auto transport = weakTransport.lock();
        if (!transport || !transport->cancel(id)) {
            endBy(weakEnd, reason);
        }
    });
    MCPRequest message{id, std::move(method), std::move(params)};
    MCPCompletion<MCPResponse> ending = [end](MCPResult<MCPResponse> response) {
        (*end)(std::move(response));
    };
    const bool hadSent = std::exchange(call->sessionRecord.hasSent, true);
    if (place == Place::anywhere) {
        transport_->send(std::move(message), std::move(ending));
    } else if (!transport_->sendInSession(message, ending)) {
        call->sessionRecord.hasSent = hadSent;
        return ending(failure(MCPError(MCPClientError::sessionExpired())));
    }
    // A call that ended meanwhile may not have found its message at the transport.
    if (auto reason = call->reasonToEnd(); reason && !transport_->cancel(id)) {
        (*end)(failure(*std::move(reason)));
    }
}

void MCPMessageSender::notify(const Call& call, std::string method, MCPCompletion<void> completion) const {
    if (auto reason = call->reasonToEnd()) {
        return completion(failure(*std::move(reason)));
    }
    const auto end = std::make_shared<MCPOnceCompletion<void>>(std::move(completion));
    call->setInterruption([weak = std::weak_ptr(end)](const MCPError& reason) { endBy(weak, reason); });
    transport_->send(MCPNotification{std::move(method), std::nullopt},
                     [end](MCPResult<void> sent) { (*end)(std::move(sent)); });
    if (auto reason = call->reasonToEnd()) {
        (*end)(failure(*std::move(reason)));
    }
}

void MCPMessageSender::disconnect(const Call& call, MCPCompletion<void> completion) const {
    if (auto reason = call->reasonToEnd()) {
        return completion(failure(*std::move(reason)));
    }
    const auto end = std::make_shared<MCPOnceCompletion<void>>(std::move(completion));
    call->setInterruption([weak = std::weak_ptr(end)](const MCPError& reason) { endBy(weak, reason); });
    transport_->disconnect([end](MCPResult<void> ended) { (*end)(std::move(ended)); });
    if (auto reason = call->reasonToEnd()) {
        (*end)(failure(*std::move(reason)));
    }
}

} // namespace zelto
