#include "Support/FailingAnswers.h"

namespace zelto {

std::span<const FailingAnswer> failingAnswers() {
    static const FailingAnswer answers[] = {
        {"informational only", PlayedAnswer::bytes("HTTP/1.1 100 Continue\r\n\r\n"), "connectionError"},
        {"elsewhere", {.status = 302, .fields = {{"Location", "https://evil.example/"}}}, "apiCallError"},
        {"300", PlayedAnswer::json("no", 300), "apiCallError"},
        {"400", PlayedAnswer::json("invalid id", 400), "apiCallError"},
        {"invalid_grant", PlayedAnswer::json(R"({"error":"invalid_grant"})", 400), "oauthError"},
        {"another error", PlayedAnswer::json(R"({"error":"other"})", 400), "apiCallError"},
        {"401", PlayedAnswer::json("invalid token", 401), "oauthError"},
        {"402", PlayedAnswer::json("no", 402), "apiCallError"},
        {"403", PlayedAnswer::json("no", 403), "forbidden"},
        {"404", PlayedAnswer::json("no", 404), "itemNotFound"},
        {"405", PlayedAnswer::json("no", 405), "apiCallError"},
        {"412", PlayedAnswer::json("no", 412), "apiCallError"},
        {"428", PlayedAnswer::json("no", 428), "apiCallError"},
        {"429", PlayedAnswer::json(R"({"error":"API_TOKEN_LIMIT_EXCEEDED"})", 429), "toManyRequests"},
        {"499", PlayedAnswer::json("no", 499), "apiCallError"},
        {"500", PlayedAnswer::json("no", 500), "serviceInternalError"},
        {"503 that is a 412", PlayedAnswer::json("x ResponseCode 412 x", 503), "invalidAccount"},
        {"500 that is a 403", PlayedAnswer::json("x Status 500 - 403 Forbidden x", 500), "invalidAccount"},
        {"599", PlayedAnswer::json("no", 599), "serviceInternalError"},
        {"reset", PlayedAnswer::reset(), "connectionError"},
        {"cut", PlayedAnswer::bytes("HTTP/1.1 200 OK\r\nContent-Length: 50\r\n\r\n{\"id\":"),
         "connectionError"},
        {"no HTTP", PlayedAnswer::bytes("SSH-2.0-OpenSSH\r\n\r\n"), "connectionError"},
    };
    return answers;
}

std::span<const FailingAnswer> unreadableAnswers() {
    static const FailingAnswer answers[] = {
        {"no record", PlayedAnswer::json("{}"), "dataParseError"},
        {"no JSON", PlayedAnswer::json("<html>"), "dataParseError"},
        {"nothing", {.status = 204}, "dataParseError"},
    };
    return answers;
}

} // namespace zelto
