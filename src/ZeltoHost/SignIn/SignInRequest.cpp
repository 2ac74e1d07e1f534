#include <ZeltoHost/SignIn/SignInRequest.h>

#include <Platform/ASCII.h>
#include <Platform/HTTP/HTTPHeaders.h>
#include <Platform/Numbers.h>

#include <algorithm>

namespace zelto {

namespace {

constexpr std::string_view lineEnd = "\r\n";
constexpr std::string_view headEnd = "\r\n\r\n";

struct Head {
    std::string_view method;
    std::string_view target;
    std::vector<std::pair<std::string_view, std::string_view>> fields;

    // `nullopt` if there is no such field, or more than one.
    std::optional<std::string_view> onlyField(std::string_view name) const {
        std::optional<std::string_view> found;
        for (const auto& [fieldName, value] : fields) {
            if (equalIgnoringASCIICase(fieldName, name)) {
                if (found) {
                    return std::nullopt;
                }
                found = value;
            }
        }
        return found;
    }

    bool has(std::string_view name) const {
        return std::ranges::any_of(
            fields, [&](const auto& field) { return equalIgnoringASCIICase(field.first, name); });
    }
};

bool readRequestLine(std::string_view line, Head& head) {
    const auto methodEnd = line.find(' ');
    const auto targetEnd = line.rfind(' ');
    if (methodEnd == std::string_view::npos || methodEnd == targetEnd) {
        return false;
    }
    head.method = line.substr(0, methodEnd);
    head.target = line.substr(methodEnd + 1, targetEnd - methodEnd - 1);
    const auto version = line.substr(targetEnd + 1);
    return head.target.starts_with('/') && std::ranges::all_of(head.target, isVisibleASCII) &&
           (version == "HTTP/1.1" || version == "HTTP/1.0");
}

// Parses a head, given without the blank line at its end.
std::optional<Head> readHead(std::string_view text) {
    Head head;
    bool isFirst = true;
    while (!text.empty()) {
        const auto line = text.substr(0, text.find(lineEnd));
        text.remove_prefix(std::min(text.size(), line.size() + lineEnd.size()));
        if (std::exchange(isFirst, false)) {
            if (!readRequestLine(line, head)) {
                return std::nullopt;
            }
            continue;
        }
        const auto colon = line.find(':');
        if (colon == std::string_view::npos || !isValidHeaderName(line.substr(0, colon)) ||
            !isValidHeaderValue(line.substr(colon + 1))) {
            return std::nullopt;
        }
        head.fields.emplace_back(line.substr(0, colon), trimmedBlanks(line.substr(colon + 1)));
    }
    return isFirst ? std::nullopt : std::optional(std::move(head));
}

std::optional<std::size_t> bodyLength(const Head& head) {
    const auto text = head.onlyField("Content-Length");
    if (!text || head.has("Transfer-Encoding")) {
        return std::nullopt;
    }
    const auto length = numberIn<std::size_t>(*text);
    return length && *length <= maximumSignInBody ? length : std::nullopt;
}

SignInRequest responseIn(std::string_view form) {
    auto items = parseFormItems(form);
    return items ? SignInRequest{SignInRequestKind::response, *std::move(items)} : SignInRequest();
}

SignInRequest readPosted(const Head& head, std::string_view body) {
    const auto type = head.onlyField("Content-Type");
    constexpr std::string_view form = "application/x-www-form-urlencoded";
    const auto length = bodyLength(head);
    if (!type || !length || !equalIgnoringASCIICase(trimmedBlanks(type->substr(0, type->find(';'))), form) ||
        body.size() > *length) {
        return {};
    }
    return body.size() < *length ? SignInRequest{SignInRequestKind::incomplete} : responseIn(body);
}

} // namespace

SignInRequest readSignInRequest(std::string_view bytes, const SignInRequestRules& rules) {
    const auto end = bytes.find(headEnd);
    if (std::min(end, bytes.size()) > maximumSignInHead) {
        return {};
    }
    if (end == std::string_view::npos) {
        return {SignInRequestKind::incomplete};
    }
    const auto head = readHead(bytes.substr(0, end));
    if (!head) {
        return {};
    }
    const auto host = head->onlyField("Host");
    const auto question = head->target.find('?');
    if (!host || std::ranges::find(rules.hosts, *host) == rules.hosts.end() ||
        head->target.substr(0, question) != rules.path) {
        return {};
    }
    if (rules.takesFragment && head->method == "POST" && question == std::string_view::npos) {
        return readPosted(*head, bytes.substr(end + headEnd.size()));
    }
    if (head->method != "GET") {
        return {};
    }
    if (rules.takesFragment) {
        return {SignInRequestKind::fragmentPage};
    }
    return question == std::string_view::npos ? SignInRequest()
                                              : responseIn(head->target.substr(question + 1));
}

} // namespace zelto
