#include "MCPServer.h"

#include <Platform/JSON/JSONValue.h>

#include <charconv>
#include <optional>

namespace zelto {

namespace {

std::optional<JSONValue> member(const ReceivedRequest& request, std::string_view key) {
    const auto body = JSONValue::parse(request.body);
    const auto* value = body ? body->find(key) : nullptr;
    return value ? std::optional(*value) : std::nullopt;
}

std::string chunk(std::string_view bytes) {
    char size[16];
    const auto end = std::to_chars(size, size + sizeof size, bytes.size(), 16).ptr;
    return std::string(size, end) + "\r\n" + std::string(bytes) + "\r\n";
}

} // namespace

std::string respondTo(std::string_view id, std::string_view result) {
    return R"({"jsonrpc":"2.0","id":)" + std::string(id) + R"(,"result":)" + std::string(result) + "}";
}

std::string idOf(const ReceivedRequest& request) {
    const auto id = member(request, "id");
    return id ? id->text().value() : "null";
}

std::string methodOf(const ReceivedRequest& request) {
    const auto method = member(request, "method");
    return method ? *method->asString() : request.method;
}

PlayedResponse status(int code, std::vector<HTTPHeaderField> fields) {
    return {.status = code, .fields = std::move(fields)};
}

PlayedResponse jsonResponse(const ReceivedRequest& request, std::string_view result,
                            std::vector<HTTPHeaderField> fields) {
    auto response = PlayedResponse::json(respondTo(idOf(request), result));
    response.fields.insert(response.fields.end(), fields.begin(), fields.end());
    return response;
}

PlayedResponse eventStream(std::string text) {
    return {.body = std::move(text), .fields = {{"Content-Type", "text/event-stream"}}};
}

PlayedResponse eventStream(std::function<void(const Sender&)> play) {
    return {.raw = "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nTransfer-Encoding: chunked\r\n\r\n",
            .stream = [play = std::move(play)](const Sender& send) {
                play([&](std::string_view bytes) { return bytes.empty() || send(chunk(bytes)); });
                send("0\r\n\r\n");
            }};
}

std::string eventOf(std::string_view data) {
    return "data: " + std::string(data) + "\n\n";
}

MCPServer::MCPServer(Handler handler, bool hasSessions)
    : handler_(std::move(handler)), hasSessions_(hasSessions),
      server_(std::make_unique<TestHTTPServer>(
          [this](const ReceivedRequest& request) { return respondTo(request); })) {}

PlayedResponse MCPServer::respondTo(const ReceivedRequest& request) {
    const auto method = methodOf(request);
    if (method == "initialize") {
        std::vector<HTTPHeaderField> fields;
        if (hasSessions_) {
            fields.push_back({"mcp-session-id", "session-" + std::to_string(++sessions_)});
        }
        return jsonResponse(request,
                            R"({"protocolVersion":")" + protocolVersion +
                                R"(","capabilities":{"tools":{}},"serverInfo":{"name":"s","version":"1"}})",
                            fields);
    }
    if (method == "notifications/initialized") {
        return status(202);
    }
    return handler_(request);
}

std::vector<std::string> MCPServer::log() const {
    std::vector<std::string> lines;
    for (const auto& each : server_->requests()) {
        lines.push_back(methodOf(each) + " " + each.headers.value("Mcp-Session-Id").value_or("-"));
    }
    return lines;
}

} // namespace zelto
