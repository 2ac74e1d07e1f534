#pragma once

#include <ZeltoSandbox/GoogleDrive/GoogleDriveErrors.h>
#include <ZeltoSandbox/HTTP/SandboxRequest.h>

#include <Platform/Result.h>

#include <memory>
#include <optional>
#include <string>

namespace zelto::sandbox {

// A multipart upload: the metadata of its first part, and the decoded content of its second.
struct GoogleDriveUpload {
    std::optional<std::string> name;
    std::optional<std::string> mimeType;
    bool hasParents = false; // whether the metadata names parents at all
    std::optional<std::string> parent;
    std::string contentType; // of the second part
    SpoolRange content;

    // What is decoded takes its room from the space.
    static Result<GoogleDriveUpload, GoogleError> read(const SandboxRequest& request,
                                                       std::shared_ptr<SpoolSpace> space);
};

} // namespace zelto::sandbox
