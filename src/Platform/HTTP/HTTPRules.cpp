#include <Platform/HTTP/HTTPRulesInternal.h>

#include <Platform/ASCII.h>
#include <Platform/URLGrammarInternal.h>

#include <algorithm>
#include <array>

namespace zelto {
namespace {

constexpr std::size_t commonSizeOfFields = 256;

std::unexpected<URLError> refusal(std::string message) {
    return failure(URLError{URLErrorCode::invalidRequest, std::move(message)});
}

// The parts of a URL, as views of its text.
struct Target {
    explicit Target(const URL& url)
        : parts(splitURL(url.absoluteString())), scheme(toASCIILower(parts.scheme.value_or(""))),
          authority(splitURLAuthority(parts.authority.value_or(""))), host(toASCIILower(authority.host)),
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
        return "The address has the port 0, which no server can have.";
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
        if (isTransportHeader(field.name)) {
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

// "127.0.0.1:8080" for a route's URL; `nullopt` if it is not a valid route.
std::optional<std::string_view> routeAuthority(const URL& route) {
    const Target target(route);
    const auto& parts = target.parts;
    const bool isBare = (parts.path.empty() || parts.path == "/") && !parts.query && !parts.fragment;
    return isBare && target.scheme == "http" && target.port && !problemOf(target) ? parts.authority
                                                                                  : std::nullopt;
}

// The Host field that the URL's own server expects.
std::string hostField(const Target& target) {
    auto host = target.host.contains(':') ? "[" + target.host + "]" : target.host;
    if (target.port && *target.port != target.standardPort()) {
        host += ":" + std::to_string(*target.port);
    }
    return host;
}

// Everything but the fragment, which is not sent.
std::string addressOf(std::string_view scheme, std::string_view authority, const URLSplit& parts) {
    std::string text;
    text.reserve(scheme.size() + authority.size() + parts.path.size() + parts.query.value_or("").size() + 5);
    text.append(scheme).append("://").append(authority);
    text.append(parts.path.empty() ? "/" : parts.path);
    if (parts.query) {
        text.append("?").append(*parts.query);
    }
    return text;
}

void addOwnFields(const HTTPHeaders& headers, WireRequest& wire) {
    for (const auto& [name, value] : headers.fields()) {
        if (equalIgnoringASCIICase(name, "Content-Length")) {
            continue; // taken from the body
        }
        if (equalIgnoringASCIICase(name, "Accept-Encoding")) {
            wire.acceptedEncodings = value;
            continue;
        }
        appendHeaderLine(wire.headerLines, name, value);
    }
}

void addStandardFields(const URLRequest& request, WireRequest& wire) {
    const auto add = [&](std::string_view line) { wire.headerLines.append(line).push_back('\0'); };
    if (!request.headers.contains("User-Agent")) {
        add("User-Agent: ZeltoIntegrations");
    }
    if (!request.headers.contains("Accept")) {
        add("Accept:");
    }
    if (declaresBody(request)) {
        add("Expect:");
        if (!request.headers.contains("Content-Type")) {
            add("Content-Type:");
        }
    }
}

} // namespace

bool isLoopbackHost(std::string_view host) {
    if (host == "localhost" || host == "::1") {
        return true;
    }
    // A full dotted quad only: resolvers disagree about shorter forms and other bases.
    std::array<int, 4> numbers{};
    std::size_t count = 0;
    while (count < 4) {
        const auto dot = host.find('.');
        const auto digits = host.substr(0, dot);
        const bool isNumber = !digits.empty() && digits.size() <= 3 &&
                              !(digits.size() > 1 && digits[0] == '0') &&
                              std::ranges::all_of(digits, isASCIIDigit);
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

void appendHeaderLine(std::string& lines, std::string_view name, std::string_view value) {
    // libcurl takes "Name:" as a request to leave the field out.
    const bool isBlank = value.find_first_not_of(" \t") == value.npos;
    lines.append(name).append(isBlank ? ";" : ": ").append(isBlank ? "" : value).push_back('\0');
}

bool declaresBody(const URLRequest& request) {
    const auto& method = request.method;
    return (request.body && !request.body->empty()) || method == "POST" || method == "PUT" ||
           method == "PATCH";
}

Result<WireRequest, URLError> wireRequest(const URLRequest& request, const URL& url,
                                          const URLSessionConfiguration& configuration) {
    const auto route = configuration.route ? routeAuthority(*configuration.route) : std::nullopt;
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
    const bool isRouted = route && !target.isLoopback;
    WireRequest wire;
    wire.isRouted = isRouted;
    wire.isLoopback = target.isLoopback || isRouted;
    wire.isPlain = isRouted || target.scheme == "http";
    wire.url = isRouted ? addressOf("http", *route, target.parts)
                        : addressOf(target.scheme, *target.parts.authority, target.parts);
    wire.headerLines.reserve(commonSizeOfFields);
    addOwnFields(request.headers, wire);
    if (isRouted) {
        appendHeaderLine(wire.headerLines, "Host", hostField(target));
    }
    addStandardFields(request, wire);
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
