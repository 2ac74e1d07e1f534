#pragma once

#include <Platform/Result.h>
#include <ZeltoSandbox/HTTP/SandboxRequest.h>
#include <ZeltoSandbox/OAuth/TokenStore.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// The token of an "Authorization: Bearer …" header; nullopt without one.
std::optional<std::string> bearerToken(const SandboxRequest& request);

// What the request's bearer token was issued for at the service. The text of an error says what is wrong with
// the token: it is missing, unknown or has expired.
Result<const TokenGrant*, std::string> bearerGrant(const SandboxRequest& request, TokenStore& tokens,
                                                   std::string_view service);

} // namespace zelto::sandbox
