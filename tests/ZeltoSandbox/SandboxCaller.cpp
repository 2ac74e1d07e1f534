#include <ZeltoSandbox/SandboxCaller.h>

#include <Platform/ASCII.h>
#include <Platform/PercentEncoding.h>

#include <Support/Eventually.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <poll.h>
#include <sys/socket.h>

namespace zelto {

std::string CallerResponse::field(std::string_view name) const {
    const auto found = std::ranges::find_if(
        fields, [&](const HTTPHeaderField& each) { return equalIgnoringASCIICase(each.name, name); });
    return found == fields.end() ? "" : found->value;
}

JSONValue CallerResponse::json() const {
    const auto parsed = JSONValue::parse(body);
    EXPECT_TRUE(parsed) << "no JSON: " << body;
    return parsed.value_or(JSONValue());
}

std::string CallerResponse::text(std::string_view key) const {
    const auto document = json();
    const auto* member = document.find(key);
    return member && member->asString() ? *member->asString() : "(none)";
}

std::optional<std::string> CallerResponse::redirectItem(std::string_view name) const {
    const auto location = field("Location");
    const auto start = location.find_first_of("?#");
    const auto items = start == std::string::npos ? std::nullopt : parseFormItems(location.substr(start + 1));
    return items ? sandbox::valueOf(*items, name) : std::nullopt;
}

CallerConnection::CallerConnection(std::uint16_t port) : socket_(LoopbackSocket::connect(port)) {
    EXPECT_TRUE(socket_);
}

void CallerConnection::send(std::string_view bytes) {
    sendAll(socket_.get(), bytes);
}

bool CallerConnection::fill() {
    constexpr auto timeout = std::chrono::milliseconds(maximumWait);
    pollfd waiting{socket_.get(), POLLIN, 0};
    if (::poll(&waiting, 1, static_cast<int>(timeout.count())) <= 0) {
        ADD_FAILURE() << "the sandbox neither responded nor closed the connection";
        return false;
    }
    std::array<char, 65536> piece;
    const auto got = ::recv(socket_.get(), piece.data(), piece.size(), 0);
    if (got <= 0) {
        return false;
    }
    buffer_.append(piece.data(), static_cast<std::size_t>(got));
    return true;
}

CallerResponse CallerConnection::read(bool hasBody) {
    CallerResponse response;
    std::size_t end = 0;
    while ((end = buffer_.find("\r\n\r\n")) == std::string::npos) {
        if (!fill()) {
            return response;
        }
    }
    const auto head = buffer_.substr(0, end + 2);
    buffer_.erase(0, end + 4);
    std::from_chars(head.data() + 9, head.data() + 12, response.status);
    for (auto line = head.find("\r\n") + 2; line < head.size();) {
        const auto lineEnd = head.find("\r\n", line);
        const auto colon = head.find(": ", line);
        response.fields.push_back(
            {head.substr(line, colon - line), head.substr(colon + 2, lineEnd - colon - 2)});
        line = lineEnd + 2;
    }
    std::size_t length = 0;
    const auto lengthText = response.field("Content-Length");
    std::from_chars(lengthText.data(), lengthText.data() + lengthText.size(), length);
    while (hasBody && buffer_.size() < length && fill()) {
    }
    if (hasBody) {
        response.body = buffer_.substr(0, length);
        buffer_.erase(0, length);
    }
    return response;
}

std::string CallerConnection::readEvent() {
    for (;;) {
        std::size_t end = 0;
        while ((end = buffer_.find("\n\n")) == std::string::npos) {
            if (!fill()) {
                return "";
            }
        }
        const auto event = buffer_.substr(0, end);
        buffer_.erase(0, end + 2);
        if (!event.starts_with(':')) {
            return event;
        }
    }
}

bool CallerConnection::isEnded() {
    while (fill()) {
    }
    return !::testing::Test::HasFailure();
}

SandboxCaller::SandboxCaller(SandboxOptions options)
    : server(std::move(*SandboxServer::start(std::move(options)))) {}

CallerResponse SandboxCaller::send(const std::string& bytes) const {
    CallerConnection connection(server->port());
    connection.send(bytes);
    return connection.read(!bytes.starts_with("HEAD "));
}

CallerResponse SandboxCaller::get(const std::string& host, const std::string& target,
                                  const std::string& header) const {
    return send("GET " + target + " HTTP/1.1\r\nHost: " + host + "\r\n" + header + "\r\n");
}

CallerResponse SandboxCaller::post(const std::string& host, const std::string& target,
                                   const std::string& type, const std::string& body,
                                   const std::string& header) const {
    return send("POST " + target + " HTTP/1.1\r\nHost: " + host + "\r\nContent-Type: " + type +
                "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + header + "\r\n" + body);
}

CallerResponse SandboxCaller::postForm(const std::string& host, const std::string& target, const Items& items,
                                       const std::string& header) const {
    return post(host, target, "application/x-www-form-urlencoded", formText(items), header);
}

CallerResponse SandboxCaller::control(const std::string& path, const std::string& json) const {
    return post(ownHost(), "/control/" + path, "application/json", json, "X-Zelto-Sandbox: 1\r\n");
}

std::string formText(const SandboxCaller::Items& items) {
    std::string text;
    for (const auto& item : items) {
        text += (text.empty() ? "" : "&") + item.name + "=" +
                percentEncodeBytes(item.value.value_or(""), AllowedCharacters::alphanumerics);
    }
    return text;
}

std::string hiddenField(const std::string& html, const std::string& name) {
    const auto mark = "name=\"" + name + "\" value=\"";
    const auto start = html.find(mark);
    if (start == std::string::npos) {
        return "";
    }
    return html.substr(start + mark.size(), html.find('"', start + mark.size()) - start - mark.size());
}

} // namespace zelto
