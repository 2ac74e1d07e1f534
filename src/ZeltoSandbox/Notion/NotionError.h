#pragma once

#include <ZeltoSandbox/HTTP/SandboxResponse.h>

#include <string>

namespace zelto::sandbox {

// A refusal as Notion writes it.
struct NotionError {
    int status = 400; // of HTTP
    std::string code; // "validation_error"
    std::string message;

    SandboxResponse response() const;

    static NotionError validation(std::string message);
    static NotionError invalidRequest(std::string message);
    static NotionError databaseNotFound(const std::string& id);
    // Notion's error for a status of HTTP.
    static NotionError ofStatus(int status);
};

} // namespace zelto::sandbox
