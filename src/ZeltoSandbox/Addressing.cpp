#include <ZeltoSandbox/Addressing.h>

#include <ZeltoSandbox/OAuth/OAuthServices.h>
#include <ZeltoSandbox/SandboxService.h>

#include <Platform/ASCII.h>
#include <Platform/PercentEncoding.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

constexpr std::string_view webFolder = "/host/";
constexpr std::size_t maximumForm = std::size_t{1} << 20;

std::string withoutUsualPort(const std::string& host) {
    for (const auto* port : {":443", ":80"}) {
        if (host.ends_with(port)) {
            return host.substr(0, host.size() - std::string_view(port).size());
        }
    }
    return host;
}

bool isOwnName(const std::string& host, std::uint16_t port) {
    for (const auto* name : {"127.0.0.1", "localhost", "[::1]"}) {
        if (host == std::string(name) + ":" + std::to_string(port) || (port == 80 && host == name)) {
            return true;
        }
    }
    return false;
}

std::optional<std::vector<std::string>> segmentsOf(std::string_view path) {
    std::vector<std::string> segments;
    while (!path.empty()) {
        path.remove_prefix(1);
        const auto end = std::min(path.find('/'), path.size());
        auto segment = percentDecode(path.substr(0, end));
        if (!segment) {
            return std::nullopt;
        }
        segments.push_back(std::move(*segment));
        path.remove_prefix(end);
    }
    return segments;
}

void readBody(SandboxRequest& request) {
    const auto* type = request.head.field("Content-Type");
    if (!type) {
        return;
    }
    request.contentType = mediaTypeOf(*type);
    const auto whole = SpoolRange::all(request.body);
    if (request.contentType == "multipart/form-data") {
        auto parts = parseMultipart(whole, headerParameter(*type, "boundary").value_or(""));
        if (parts) {
            request.parts = std::move(*parts);
        } else {
            request.bodyProblem = parts.error();
        }
    } else if (request.contentType == "application/x-www-form-urlencoded") {
        auto form = whole.size <= maximumForm ? parseFormItems(whole.text(maximumForm)) : std::nullopt;
        if (form) {
            request.form = std::move(*form);
        } else {
            request.bodyProblem = "the form is too large or has a broken escape";
        }
    }
}

} // namespace

bool isServiceHost(std::string_view host) {
    const auto services = sandboxServices();
    const auto codes = oauthServices();
    const auto signatures = oauth1Services();
    return std::ranges::any_of(services,
                               [&](const SandboxServiceRow& row) {
                                   return std::ranges::find(row.hosts, host) != row.hosts.end();
                               }) ||
           std::ranges::any_of(
               codes,
               [&](const OAuthService& row) { return row.authorizeHost == host || row.tokenHost == host; }) ||
           std::ranges::find(signatures, host, &OAuth1Service::host) != signatures.end();
}

std::optional<RequestAddress> addressOf(std::string_view hostHeader, std::string_view target,
                                        std::uint16_t port) {
    const auto question = std::min(target.find('?'), target.size());
    RequestAddress address{.host = toASCIILower(hostHeader),
                           .path = std::string(target.substr(0, question)),
                           .query = std::string(target.substr(std::min(question + 1, target.size()))),
                           .webPrefix = {}};
    if (!isOwnName(address.host, port)) {
        address.host = withoutUsualPort(address.host);
        return isServiceHost(address.host) ? std::optional(address) : std::nullopt;
    }
    address.host.clear();
    if (!address.path.starts_with(webFolder)) {
        return address;
    }
    const auto end = std::min(address.path.find('/', webFolder.size()), address.path.size());
    const auto host =
        toASCIILower(std::string_view(address.path).substr(webFolder.size(), end - webFolder.size()));
    if (!isServiceHost(host)) {
        return address;
    }
    address.host = host;
    address.webPrefix = std::string(webFolder) + host;
    address.path = end < address.path.size() ? address.path.substr(end) : "/";
    return address;
}

Result<SandboxRequest, std::string> requestOf(RequestHead head, RequestAddress address,
                                              std::shared_ptr<const SpooledBytes> body) {
    for (const auto* name : {"Authorization", "Content-Type"}) {
        if (head.count(name) > 1) {
            return failure(std::string(name) + " stands twice");
        }
    }
    auto segments = segmentsOf(address.path);
    auto query = parseFormItems(address.query);
    if (!segments || !query) {
        return failure(std::string("the address has a broken escape"));
    }
    SandboxRequest request;
    request.method = head.method;
    request.head = std::move(head);
    request.host = std::move(address.host);
    request.path = std::move(address.path);
    request.webPrefix = std::move(address.webPrefix);
    request.segments = std::move(*segments);
    request.query = std::move(*query);
    request.body = std::move(body);
    readBody(request);
    return request;
}

} // namespace zelto::sandbox
