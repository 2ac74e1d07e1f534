#include <ZeltoIntegrations/MCP/MCPHTTPRequestHandler.h>

#include <ZeltoIntegrations/MCP/MCPDecodingInternal.h>
#include <ZeltoIntegrations/MCP/MCPHTTPResponseRules.h>

#include <Platform/ASCII.h>
#include <Platform/Growth.h>

#include <algorithm>
#include <charconv>
#include <utility>

namespace zelto {

namespace {

constexpr std::string_view jsonType = "application/json";
constexpr std::string_view eventStreamType = "text/event-stream";

// How much is reserved at most on the strength of a Content-Length.
std::size_t expectedLength(const HTTPURLResponse& response) {
    constexpr std::size_t maximum = std::size_t{16} << 20;
    const auto text = response.header("Content-Length").value_or("");
    std::size_t length = 0;
    std::from_chars(text.data(), text.data() + text.size(), length);
    return std::min(length, maximum);
}

} // namespace

MCPHTTPRequestHandler::MCPHTTPRequestHandler(MCPRequestID requestID,
                                             MCPHTTPSessionIDReference sessionIDReference,
                                             MCPCompletion<MCPResponse> completion)
    : requestID_(std::move(requestID)), sessionIDReference_(std::move(sessionIDReference)),
      completion_(std::move(completion)) {}

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
    if (isJSON()) {
        body_.reserve(expectedLength(response));
    }
    return MCPHTTPTaskDecision::continueLoading();
}

bool MCPHTTPRequestHandler::isJSON() const {
    return normalizedContentType_->contains(jsonType);
}

MCPHTTPTaskDecision MCPHTTPRequestHandler::receive(std::string_view bytes) {
    if (!normalizedContentType_) {
        return MCPHTTPTaskDecision::continueLoading();
    }
    if (isJSON()) {
        reserveFor(bytes.size(), body_);
        body_ += bytes;
        return MCPHTTPTaskDecision::continueLoading();
    }
    auto events = parser_.append(bytes);
    if (!events) {
        return MCPHTTPTaskDecision::finish(failure(MCPError(std::move(events.error()))));
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
