#pragma once

#include <ZeltoSandbox/HTTP/SandboxResponse.h>

#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// A refusal as Zoom writes it: {"code", "message"}, and {"errors": [{"field", "message"}]} where members of
// the request are not as they have to be.
struct ZoomError {
    struct Field {
        std::string name;
        std::string message;
    };

    int status = 400; // of HTTP
    int code = 300;   // Zoom's own
    std::string message;
    std::vector<Field> fields = {};

    SandboxResponse response() const;

    static ZoomError validation(std::vector<Field> fields);
    static ZoomError noSuchMeeting(std::string_view id);
    // Zoom's error for a status of HTTP.
    static ZoomError ofStatus(int status);
};

} // namespace zelto::sandbox
