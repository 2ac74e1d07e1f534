#pragma once

#include <Platform/HTTP/HTTPHeaders.h>
#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/HTTP/Spool.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zelto::sandbox {

// What a request is answered with.
struct SandboxResponse {
    int status = 200;
    std::vector<HTTPHeaderField> fields = {}; // without Content-Length
    std::string body = {};
    std::optional<SpoolRange> file = {}; // instead of `body`
    // Instead of both: called again and again for what goes out next, which may be nothing for now. The
    // answer ends with the connection. Should not take longer than half a second.
    std::function<std::string()> stream = {};
    std::string problem = {}; // why it was refused, for the page

    static SandboxResponse json(JSONValue value, int status = 200);
    static SandboxResponse text(std::string text, int status = 200);
    static SandboxResponse html(std::string html, int status = 200);
    // 303: a browser goes on by GET. The address may be of any scheme.
    static SandboxResponse redirect(std::string location);

    // The same, refused for that reason.
    SandboxResponse because(std::string reason) &&;
    SandboxResponse with(std::string name, std::string value) &&;
};

// "Not Found"; an empty text for a status that has no usual one.
std::string_view reasonPhrase(int status);

// Status line and header with the body's length.
std::string answerHead(const SandboxResponse& answer, bool keepsAlive);

} // namespace zelto::sandbox
