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

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& each : lower) {
        each = each >= 'A' && each <= 'Z' ? static_cast<char>(each | 0x20) : each;
    }
    return lower;
}

// A URL taken apart once; points into its text.
struct Target {
    explicit Target(const URL& url)
        : parts(splitURL(url.absoluteString())), scheme(lowerCase(parts.scheme.value_or(""))),
          authority(splitURLAuthority(parts.authority.value_or(""))), host(lowerCase(authority.host)),
          port(portNumberOf(authority.port)), isLoopback(isLoopbackHost(host)) {}

    std::uint16_t standardPort() const { return scheme == "https" ? 443 : 80; }

    bool hasOriginOf(const Target& other) const {
        return scheme == other.scheme && host == other.host &&
               port.value_or(standardPort()) == other.port.value_or(other.standardPort());
    }

    URLSplit parts;
    std::string scheme;
    URLAuthority authority;
    std::string host;
    std::optional<std::uint16_t> port;
    bool isLoopback;
};

std::optional<std::string> problemOf(const Target& target) {
    if (target.scheme != "https" && target.scheme != "http") {
        return "A request goes to an https address, not to one of the scheme \"" + target.scheme + "\".";
    }
    if (target.scheme == "http" && !target.isLoopback) {
        return "Plain http goes to this machine alone, not to " + target.host + ". Use https.";
    }
    if (target.authority.userInfo) {
        return "The address holds a user name or password, which is not sent. Use a header field.";
    }
    if (target.port == 0) {
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
    for (const auto& field : headers.fields()) {
        const auto isField = [&](std::string_view name) { return equalIgnoringASCIICase(name, field.name); };
        if (std::ranges::any_of(ownFields, isField)) {
            return "The header field " + field.name + " is not for a request to set.";
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
    const Target target(route);
    const auto& parts = target.parts;
    const bool isBare = (parts.path.empty() || parts.path == "/") && !parts.query && !parts.fragment;
    if (!isBare || target.scheme != "http" || !target.port || problemOf(target)) {
        return std::nullopt;
    }
    return "http://" + std::string(*parts.authority);
}

// The Host of a URL as its own server gets it.
std::string hostField(const Target& target) {
    auto host = target.host.contains(':') ? "[" + target.host + "]" : target.host;
    if (target.port && *target.port != target.standardPort()) {
        host += ":" + std::to_string(*target.port);
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
    wire.headerLines.reserve(headers.fields().size() + 1);
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
        auto& line = wire.headerLines.emplace_back();
        line.reserve(name.size() + 2 + value.size());
        line.append(name).append(isBlank ? ";" : ": ").append(isBlank ? "" : value);
    }
}

void addFixedLines(const URLRequest& request, WireRequest& wire) {
    wire.fixedLines.reserve(4);
    if (!request.headers.value("User-Agent")) {
        wire.fixedLines.push_back("User-Agent: ZeltoIntegrations");
    }
    if (!request.headers.value("Accept")) {
        wire.fixedLines.push_back("Accept:");
    }
    if (tellsBody(request)) {
        wire.fixedLines.push_back("Expect:");
        if (!request.headers.value("Content-Type")) {
            wire.fixedLines.push_back("Content-Type:");
        }
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

bool tellsBody(const URLRequest& request) {
    const auto& method = request.method;
    return (request.body && !request.body->empty()) || method == "POST" || method == "PUT" ||
           method == "PATCH";
}

Result<WireRequest, URLError> wireRequest(const URLRequest& request, const URL& url,
                                          const URLSessionConfiguration& configuration) {
    const auto route = configuration.route ? routeOrigin(*configuration.route) : std::nullopt;
    if (configuration.route && !route) {
        return refusal("The route of the session is no http address of this machine with a port.");
    }
    const Target target(url);
    if (auto problem = problemOf(target)) {
        return refusal(*std::move(problem));
    }
    if (auto problem = problemOf(request)) {
        return refusal(*std::move(problem));
    }
    WireRequest wire;
    wire.isLoopback = target.isLoopback || route;
    wire.isPlain = wire.isLoopback && (target.scheme == "http" || !target.isLoopback);
    addHeaderLines(request.headers, wire);
    addFixedLines(request, wire);
    if (route && !target.isLoopback) {
        wire.url = targetAt(*route, target.parts);
        wire.headerLines.push_back("Host: " + hostField(target));
    } else {
        wire.url = targetAt(target.scheme + "://" + std::string(*target.parts.authority), target.parts);
    }
    return wire;
}

std::optional<URL> redirectTarget(std::string_view method, const URL& url, int status,
                                  const HTTPHeaders& headers) {
    const bool keepsMethod = status == 307 || status == 308;
    const bool isFollowed =
        keepsMethod || (method == "GET" && (status == 301 || status == 302 || status == 303));
    const auto location = isFollowed ? headers.value("Location") : std::nullopt;
    auto target = location ? url.resolving(*location) : std::nullopt;
    if (!target || problemOf(Target(*target)) || !Target(*target).hasOriginOf(Target(url))) {
        return std::nullopt;
    }
    return target;
}

} // namespace zelto
