#include <Platform/HTTP/HTTPRulesInternal.h>

#include <Platform/URLGrammarInternal.h>

#include <algorithm>
#include <array>

namespace zelto {
namespace {

// They frame the message or name its receiver, which is the transport's to say.
constexpr std::array<std::string_view, 9> ownFields = {"Host",    "Connection", "Transfer-Encoding",
                                                       "TE",      "Trailer",    "Expect",
                                                       "Upgrade", "Keep-Alive", "Proxy-Connection"};

std::unexpected<URLError> refusal(std::string message) {
    return failure(URLError{URLErrorCode::invalidRequest, std::move(message)});
}

bool isHTTP(std::string_view scheme) {
    return scheme == "http" || scheme == "https";
}

std::uint16_t portOf(const URL& url) {
    return url.port().value_or(url.scheme() == "https" ? 443 : 80);
}

std::optional<std::string> problemOf(const URL& url) {
    const auto scheme = url.scheme();
    if (!isHTTP(scheme)) {
        return "A request goes to an https address, not to one of the scheme \"" + scheme + "\".";
    }
    if (scheme == "http" && !isLoopbackHost(url.host())) {
        return "Plain http goes to this machine alone, not to " + url.host() + ". Use https.";
    }
    if (url.userInfo()) {
        return "The address holds a user name or password, which is not sent. Use a header field.";
    }
    if (url.port() == 0) {
        return "The address has the port 0, where nobody answers.";
    }
    return std::nullopt;
}

std::optional<std::string> problemOf(const HTTPHeaders& headers) {
    if (const auto* field = headers.firstInvalid()) {
        return isValidHeaderName(field->name)
                   ? "The value of the header field " + field->name + " holds a line end or a NUL."
                   : "A header field has a name with characters that no name can hold.";
    }
    for (const auto name : ownFields) {
        if (headers.value(name)) {
            return "The header field " + std::string(name) + " is not for a request to set.";
        }
    }
    return std::nullopt;
}

std::optional<std::string> problemOf(const URLRequest& request) {
    if (!isValidHeaderName(request.method) || equalIgnoringASCIICase(request.method, "CONNECT")) {
        return "The method of the request is none that can be sent.";
    }
    if (request.method == "HEAD" && request.body && !request.body->empty()) {
        return "A HEAD request cannot have a body.";
    }
    return problemOf(request.headers);
}

// "http://127.0.0.1:8080" of a route; nothing of a URL that is none.
std::optional<std::string> routeOrigin(const URL& route) {
    const auto parts = splitURL(route.absoluteString());
    const bool isBare = (parts.path.empty() || parts.path == "/") && !parts.query && !parts.fragment;
    if (!isBare || route.scheme() != "http" || !route.port() || problemOf(route)) {
        return std::nullopt;
    }
    return "http://" + std::string(*parts.authority);
}

// The Host of a URL as its own server gets it.
std::string hostField(const URL& url) {
    auto host = url.host();
    if (host.contains(':')) {
        host = "[" + host + "]";
    }
    if (portOf(url) != (url.scheme() == "https" ? 443 : 80)) {
        host += ":" + std::to_string(portOf(url));
    }
    return host;
}

// Everything but the fragment, which stays here.
std::string targetAt(std::string_view origin, const URLSplit& parts) {
    std::string text(origin);
    text += parts.path.empty() ? "/" : parts.path;
    if (parts.query) {
        text.append("?").append(*parts.query);
    }
    return text;
}

void addHeaderLines(const HTTPHeaders& headers, WireRequest& wire) {
    for (const auto& [name, value] : headers.fields()) {
        if (equalIgnoringASCIICase(name, "Content-Length")) {
            continue; // told from the body
        }
        if (equalIgnoringASCIICase(name, "Accept-Encoding")) {
            wire.acceptedEncodings = value;
            continue;
        }
        // libcurl takes "Name:" for the wish to leave the field out.
        const bool isBlank = value.find_first_not_of(" \t") == std::string::npos;
        wire.headerLines.push_back(isBlank ? name + ";" : name + ": " + value);
    }
    // What libcurl would add by itself.
    for (const auto* name : {"Accept", "Content-Type"}) {
        if (!headers.value(name)) {
            wire.headerLines.push_back(std::string(name) + ":");
        }
    }
    wire.headerLines.emplace_back("Expect:");
    if (!headers.value("User-Agent")) {
        wire.headerLines.emplace_back("User-Agent: ZeltoIntegrations");
    }
}

} // namespace

bool isLoopbackHost(std::string_view host) {
    if (host == "localhost" || host == "::1") {
        return true;
    }
    // A full dotted quad: shorter forms and other bases are read differently by different resolvers.
    std::array<int, 4> numbers{};
    std::size_t count = 0;
    while (count < 4) {
        const auto dot = host.find('.');
        const auto digits = host.substr(0, dot);
        const bool isNumber = !digits.empty() && digits.size() <= 3 &&
                              !(digits.size() > 1 && digits[0] == '0') &&
                              std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; });
        if (!isNumber) {
            return false;
        }
        for (const char digit : digits) {
            numbers[count] = numbers[count] * 10 + (digit - '0');
        }
        if (numbers[count++] > 255) {
            return false;
        }
        if (dot == host.npos) {
            return count == 4 && numbers[0] == 127;
        }
        host.remove_prefix(dot + 1);
    }
    return false;
}

bool isRepeatable(std::string_view method) {
    constexpr std::array<std::string_view, 4> methods = {"GET", "HEAD", "PUT", "OPTIONS"};
    return std::ranges::find(methods, method) != methods.end();
}

Result<WireRequest, URLError> wireRequest(const URLRequest& request, const URL& url,
                                          const URLSessionConfiguration& configuration) {
    const auto origin = configuration.route ? routeOrigin(*configuration.route) : std::nullopt;
    if (configuration.route && !origin) {
        return refusal("The route of the session is no http address of this machine with a port.");
    }
    if (auto problem = problemOf(url)) {
        return refusal(*std::move(problem));
    }
    if (auto problem = problemOf(request)) {
        return refusal(*std::move(problem));
    }
    const auto parts = splitURL(url.absoluteString());
    const bool isLoopback = isLoopbackHost(url.host());
    WireRequest wire;
    wire.isLoopback = isLoopback || origin;
    wire.isPlain = wire.isLoopback && (url.scheme() == "http" || !isLoopback);
    if (origin && !isLoopback) {
        wire.url = targetAt(*origin, parts);
        wire.headerLines.push_back("Host: " + hostField(url));
    } else {
        wire.url = targetAt(url.scheme() + "://" + std::string(*parts.authority), parts);
    }
    addHeaderLines(request.headers, wire);
    return wire;
}

std::optional<URL> redirectTarget(std::string_view method, const URL& url, int status,
                                  const HTTPHeaders& headers) {
    const bool keepsMethod = status == 307 || status == 308;
    const bool isFollowed =
        keepsMethod || (method == "GET" && (status == 301 || status == 302 || status == 303));
    const auto location = isFollowed ? headers.value("Location") : std::nullopt;
    const auto target = location ? url.resolving(*location) : std::nullopt;
    if (!target || problemOf(*target) || target->scheme() != url.scheme() || target->host() != url.host() ||
        portOf(*target) != portOf(url)) {
        return std::nullopt;
    }
    return target;
}

} // namespace zelto
