#pragma once

#include <ZeltoSandbox/HTTP/SandboxResponse.h>

#include <initializer_list>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// Dropbox's refusals in its own shapes.

// 400, in plain text: the request itself is malformed.
SandboxResponse dropboxBadRequest(std::string_view function, const std::string& problem);

// 409 for an endpoint's own error, a union in a union: {"path", "not_found"}.
SandboxResponse dropboxConflict(std::initializer_list<std::string_view> tags);

// The same for "path" of an upload, where the reason stands in a structure.
SandboxResponse dropboxWriteConflict(std::initializer_list<std::string_view> reason);

// 401: {"expired_access_token"}, {"invalid_access_token"}.
SandboxResponse dropboxAccessRefusal(std::string_view tag);
SandboxResponse dropboxMissingScope(std::string_view scope);

// By the status alone.
SandboxResponse dropboxFailure(int status);

} // namespace zelto::sandbox
