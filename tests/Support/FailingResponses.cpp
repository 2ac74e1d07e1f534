#include "Support/FailingResponses.h"

namespace zelto {

std::span<const FailingResponse> failingResponses() {
    static const FailingResponse responses[] = {
        {"informational only", PlayedResponse::bytes("HTTP/1.1 100 Continue\r\n\r\n"), "connectionError"},
        {"elsewhere", {.status = 302, .fields = {{"Location", "https://evil.example/"}}}, "apiCallError"},
        {"300", PlayedResponse::json("no", 300), "apiCallError"},
        {"400", PlayedResponse::json("invalid id", 400), "apiCallError"},
        {"invalid_grant", PlayedResponse::json(R"({"error":"invalid_grant"})", 400), "oauthError"},
        {"another error", PlayedResponse::json(R"({"error":"other"})", 400), "apiCallError"},
        {"401", PlayedResponse::json("invalid token", 401), "oauthError"},
        {"402", PlayedResponse::json("no", 402), "apiCallError"},
        {"403", PlayedResponse::json("no", 403), "forbidden"},
        {"404", PlayedResponse::json("no", 404), "itemNotFound"},
        {"405", PlayedResponse::json("no", 405), "apiCallError"},
        {"412", PlayedResponse::json("no", 412), "apiCallError"},
        {"428", PlayedResponse::json("no", 428), "apiCallError"},
        {"429", PlayedResponse::json(R"({"error":"API_TOKEN_LIMIT_EXCEEDED"})", 429), "toManyRequests"},
        {"499", PlayedResponse::json("no", 499), "apiCallError"},
        {"500", PlayedResponse::json("no", 500), "serviceInternalError"},
        {"503 that is a 412", PlayedResponse::json("x ResponseCode 412 x", 503), "invalidAccount"},
        {"500 that is a 403", PlayedResponse::json("x Status 500 - 403 Forbidden x", 500), "invalidAccount"},
        {"599", PlayedResponse::json("no", 599), "serviceInternalError"},
        {"reset", PlayedResponse::reset(), "connectionError"},
        {"cut", PlayedResponse::bytes("HTTP/1.1 200 OK\r\nContent-Length: 50\r\n\r\n{\"id\":"),
         "connectionError"},
        {"no HTTP", PlayedResponse::bytes("SSH-2.0-OpenSSH\r\n\r\n"), "connectionError"},
    };
    return responses;
}

IntegrationLoadError loadErrorOf(const FailingResponse& failing) {
    if (failing.error == "oauthError") {
        return IntegrationLoadError::oauthError;
    }
    return failing.error == "connectionError" ? IntegrationLoadError::connectionError
                                              : IntegrationLoadError::internalError;
}

std::vector<FailingResponse> unreadableResponses() {
    return {
        {"no record", PlayedResponse::json("{}"), "dataParseError"},
        {"no JSON", PlayedResponse::json("<html>"), "dataParseError"},
        {"nothing", {.status = 204}, "dataParseError"},
    };
}

} // namespace zelto
