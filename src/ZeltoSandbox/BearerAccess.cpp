#include <ZeltoSandbox/BearerAccess.h>

#include <Platform/ASCII.h>

namespace zelto::sandbox {

std::optional<std::string> bearerToken(const SandboxRequest& request) {
    constexpr std::string_view scheme = "Bearer ";
    const auto* header = request.head.field("Authorization");
    if (!header || header->size() <= scheme.size() ||
        !equalIgnoringASCIICase(header->substr(0, scheme.size()), scheme)) {
        return std::nullopt;
    }
    return header->substr(scheme.size());
}

Result<const TokenGrant*, std::string> bearerGrant(const SandboxRequest& request, TokenStore& tokens,
                                                   std::string_view service) {
    const auto token = bearerToken(request);
    if (!token) {
        return failure(std::string("there is no bearer token"));
    }
    switch (tokens.status(service, *token)) {
    case TokenStatus::valid:
        return tokens.access(*token);
    case TokenStatus::expired:
        return failure(std::string("the access token has expired"));
    case TokenStatus::unknown:
        break;
    }
    return failure(std::string("the access token is unknown"));
}

} // namespace zelto::sandbox
