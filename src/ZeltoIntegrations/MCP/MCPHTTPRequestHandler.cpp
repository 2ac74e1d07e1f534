#include <ZeltoIntegrations/MCP/MCPHTTPRequestHandler.h>

#include <ZeltoIntegrations/MCP/MCPDecodingInternal.h>
#include <ZeltoIntegrations/MCP/MCPHTTPResponseRules.h>

#include <Platform/ASCII.h>
#include <Platform/Growth.h>
#include <Platform/Numbers.h>

#include <algorithm>
#include <utility>

namespace zelto {

namespace {

constexpr std::string_view jsonType = "application/json";
constexpr std::string_view eventStreamType = "text/event-stream";

// 0 if the server does not say.
std::uint64_t contentLength(const HTTPURLResponse& response) {
    return numberIn<std::uint64_t>(response.header("Content-Length").value_or("")).value_or(0);
}

} // namespace

MCPHTTPRequestHandler::MCPHTTPRequestHandler(MCPRequestID requestID,
                                             MCPHTTPSessionIDReference sessionIDReference,
                                             std::uint64_t maximumSize, MCPCompletion<MCPResponse> completion)
    : requestID_(std::move(requestID)), sessionIDReference_(std::move(sessionIDReference)),
      maximumSize_(maximumSize), completion_(std::move(completion)) {}

MCPHTTPTaskDecision MCPHTTPRequestHandler::handle(const MCPHTTPTaskEvent& event) {
    if (const auto* response = std::get_if<std::shared_ptr<const HTTPURLResponse>>(&event.value)) {
        return validate(**response);
    }
    return receive(std::get<std::string_view>(event.value));
}

MCPHTTPTaskDecision MCPHTTPRequestHandler::validate(const HTTPURLResponse& response) {
    if (auto error = failureOf(response, sessionIDReference_)) {
        return MCPHTTPTaskDecision::finish(failure(MCPError(*std::move(error))));
    }
    captureSessionID(response, sessionIDReference_);
    auto contentType = response.header("Content-Type");
    auto normalized = contentType ? toASCIILower(*contentType) : std::string();
    if (!normalized.contains(jsonType) && !normalized.contains(eventStreamType)) {
        return MCPHTTPTaskDecision::finish(
            failure(MCPError(MCPClientError::unsupportedHTTPContentType(std::move(contentType)))));
    }
    normalizedContentType_ = std::move(normalized);
    if (!isJSON()) {
        return MCPHTTPTaskDecision::continueLoading();
    }
    const auto length = contentLength(response);
    if (length > maximumSize_) {
        return MCPHTTPTaskDecision::finish(failure(responseTooLarge()));
    }
    constexpr std::uint64_t maximumReserve = std::uint64_t{16} << 20; // on the strength of a header
    body_.reserve(std::min(length, maximumReserve));
    return MCPHTTPTaskDecision::continueLoading();
}

bool MCPHTTPRequestHandler::isJSON() const {
    return normalizedContentType_->contains(jsonType);
}

MCPHTTPTaskDecision MCPHTTPRequestHandler::receive(std::string_view bytes) {
    if (!normalizedContentType_) {
        return MCPHTTPTaskDecision::continueLoading();
    }
    if (!isJSON()) {
        return receiveEvents(bytes);
    }
    if (bytes.size() > maximumSize_ - body_.size()) {
        return MCPHTTPTaskDecision::finish(failure(responseTooLarge()));
    }
    reserveFor(bytes.size(), body_);
    body_ += bytes;
    return MCPHTTPTaskDecision::continueLoading();
}

MCPHTTPTaskDecision MCPHTTPRequestHandler::receiveEvents(std::string_view bytes) {
    auto events = parser_.append(bytes);
    if (!events) {
        return MCPHTTPTaskDecision::finish(failure(MCPError(std::move(events.error()))));
    }
    const auto isTooLarge = [&](const MCPServerSentEvent& event) { return event.data.size() > maximumSize_; };
    if (parser_.openEventSize() > maximumSize_ || std::ranges::any_of(*events, isTooLarge)) {
        return MCPHTTPTaskDecision::finish(failure(responseTooLarge()));
    }
    auto match = matchingResponse(*std::move(events));
    if (!match) {
        return MCPHTTPTaskDecision::finish(failure(std::move(match.error())));
    }
    if (!*match) {
        return MCPHTTPTaskDecision::continueLoading();
    }
    resolvedResult_ = **std::move(match);
    return MCPHTTPTaskDecision::finish({});
}

MCPResult<std::optional<MCPResponse>>
MCPHTTPRequestHandler::matchingResponse(std::vector<MCPServerSentEvent> events) const {
    for (auto& event : events) {
        auto response = responseIn(std::move(event.data));
        if (!response || *response) {
            return response;
        }
    }
    return std::nullopt;
}

// `nullopt` for a message that is not the response to the request.
MCPResult<std::optional<MCPResponse>> MCPHTTPRequestHandler::responseIn(std::string data) const {
    using Found = Result<std::optional<MCPResponse>, DecodingError>;
    return decodedBy([&]() -> Found {
        const auto tape = JSONTape::parseInPlace(data);
        if (!tape) {
            return failure(tape.error());
        }
        const auto envelope = JSONDecoder().read<MCPRequestIDEnvelope>(*tape);
        if (!envelope) {
            return failure(envelope.error());
        }
        if (envelope->id != requestID_) {
            return std::nullopt;
        }
        auto response = JSONDecoder().read<MCPResponse>(*tape);
        return response ? Found(*std::move(response)) : failure(std::move(response.error()));
    });
}

void MCPHTTPRequestHandler::complete(MCPResult<void> outcome) {
    if (resolvedResult_) {
        completion_(*std::move(resolvedResult_));
    } else if (!outcome) {
        completion_(failure(std::move(outcome.error())));
    } else {
        completion_(successfulResponse());
    }
}

MCPResult<MCPResponse> MCPHTTPRequestHandler::successfulResponse() {
    if (!normalizedContentType_) {
        return failure(MCPError(MCPClientError::invalidHTTPResponse()));
    }
    if (!isJSON()) {
        return decodedBy([&] { return lastStreamedResponse(); });
    }
    auto body = std::exchange(body_, {});
    return decodedBy([&] { return JSONDecoder().decodeInPlace<MCPResponse>(body); });
}

MCPResult<MCPResponse> MCPHTTPRequestHandler::lastStreamedResponse() {
    auto events = parser_.finish();
    if (!events) {
        return failure(MCPError(std::move(events.error())));
    }
    auto match = matchingResponse(*std::move(events));
    if (!match) {
        return failure(std::move(match.error()));
    }
    if (!*match) {
        return failure(MCPError(MCPClientError::missingJSONRPCResponse()));
    }
    return **std::move(match);
}

} // namespace zelto
