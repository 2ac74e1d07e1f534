#include <ZeltoSandbox/HTTP/SandboxResponse.h>

#include <algorithm>
#include <utility>

namespace zelto::sandbox {

namespace {

constexpr std::pair<int, std::string_view> phrases[] = {
    {200, "OK"},
    {201, "Created"},
    {204, "No Content"},
    {303, "See Other"},
    {304, "Not Modified"},
    {400, "Bad Request"},
    {401, "Unauthorized"},
    {403, "Forbidden"},
    {404, "Not Found"},
    {405, "Method Not Allowed"},
    {408, "Request Timeout"},
    {409, "Conflict"},
    {411, "Length Required"},
    {413, "Content Too Large"},
    {415, "Unsupported Media Type"},
    {421, "Misdirected Request"},
    {429, "Too Many Requests"},
    {431, "Request Header Fields Too Large"},
    {500, "Internal Server Error"},
    {501, "Not Implemented"},
    {502, "Bad Gateway"},
    {503, "Service Unavailable"},
    {504, "Gateway Timeout"},
    {507, "Insufficient Storage"},
};

} // namespace

SandboxResponse SandboxResponse::json(JSONValue value, int status) {
    return {.status = status,
            .fields = {{"Content-Type", "application/json; charset=utf-8"}},
            .body = value.text().value_or("null")};
}

SandboxResponse SandboxResponse::text(std::string text, int status) {
    return {
        .status = status, .fields = {{"Content-Type", "text/plain; charset=utf-8"}}, .body = std::move(text)};
}

SandboxResponse SandboxResponse::html(std::string html, int status) {
    return {
        .status = status, .fields = {{"Content-Type", "text/html; charset=utf-8"}}, .body = std::move(html)};
}

SandboxResponse SandboxResponse::redirect(std::string location) {
    return {.status = 303, .fields = {{"Location", std::move(location)}}};
}

SandboxResponse SandboxResponse::because(std::string reason) && {
    problem = std::move(reason);
    return std::move(*this);
}

SandboxResponse SandboxResponse::with(std::string name, std::string value) && {
    fields.push_back({std::move(name), std::move(value)});
    return std::move(*this);
}

std::string_view reasonPhrase(int status) {
    const auto found = std::ranges::find(phrases, status, &std::pair<int, std::string_view>::first);
    return found == std::end(phrases) ? std::string_view() : found->second;
}

std::uint64_t bodyLength(const SandboxResponse& response) {
    return response.file ? response.file->size : response.body.size();
}

std::string responseHead(const SandboxResponse& response, bool keepsAlive) {
    return responseHead(response, keepsAlive, bodyLength(response));
}

std::string responseHead(const SandboxResponse& response, bool keepsAlive, std::uint64_t length) {
    auto head = "HTTP/1.1 " + std::to_string(response.status) + ' ';
    head.append(reasonPhrase(response.status)).append("\r\n");
    for (const auto& field : response.fields) {
        if (isValidHeaderName(field.name) && isValidHeaderValue(field.value)) {
            head.append(field.name).append(": ").append(field.value).append("\r\n");
        }
    }
    const bool hasBody = response.status >= 200 && response.status != 204 && response.status != 304;
    if (hasBody && !response.stream) {
        head += "Content-Length: " + std::to_string(length) + "\r\n";
    }
    return head + (keepsAlive ? "\r\n" : "Connection: close\r\n\r\n");
}

} // namespace zelto::sandbox
