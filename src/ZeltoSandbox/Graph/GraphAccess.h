#pragma once

#include <ZeltoSandbox/HTTP/SandboxResponse.h>
#include <ZeltoSandbox/OAuth/TokenStore.h>

#include <string>
#include <string_view>

namespace zelto::sandbox {

// What the services of Microsoft Graph share.

inline constexpr std::string_view graphAddress = "https://graph.microsoft.com/";

// {"error": {"code", "message", "innerError": {"date", "request-id"}}}; 429 and 503 have a Retry-After.
SandboxResponse graphRefusal(int status, std::string code, std::string message);

// A list of records. `context` is what they are, as "users('me')/onenote/notebooks".
SandboxResponse graphList(std::string_view context, JSONValue::Array records);

// Whether a token of this grant has the scope, which may be named with its resource or without.
bool graphCovers(const TokenGrant& grant, std::string_view scope);

} // namespace zelto::sandbox
