#pragma once

#include <Platform/HTTP/HTTPHeaders.h>
#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/HTTP/Spool.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zelto::sandbox {

// The response to a request.
struct SandboxResponse {
    int status = 200;
    std::vector<HTTPHeaderField> fields = {}; // without Content-Length
    std::string body = {};
    std::optional<SpoolRange> file = {}; // instead of `body`
    // Instead of both: called repeatedly for the next bytes, which may be none for now. The response ends
    // with the connection. A call should not take longer than half a second.
    std::function<std::string()> stream = {};
    std::string problem = {}; // why it was refused, for the page

    static SandboxResponse json(JSONValue value, int status = 200);
    static SandboxResponse text(std::string text, int status = 200);
    static SandboxResponse html(std::string html, int status = 200);
    // 303: a browser follows by GET. The address may have any scheme.
    static SandboxResponse redirect(std::string location);

    // The same, refused for that reason.
    SandboxResponse because(std::string reason) &&;
    SandboxResponse with(std::string name, std::string value) &&;
};

// "Not Found"; empty for a status without a usual phrase.
std::string_view reasonPhrase(int status);

// Of the body or the file.
std::uint64_t bodyLength(const SandboxResponse& response);

// Status line and header, with the length that they claim for the body.
std::string responseHead(const SandboxResponse& response, bool keepsAlive, std::uint64_t length);
std::string responseHead(const SandboxResponse& response, bool keepsAlive);

} // namespace zelto::sandbox
