#pragma once

#include <Platform/JSON/JSONValue.h>
#include <Platform/Result.h>
#include <ZeltoSandbox/FileStore.h>
#include <ZeltoSandbox/HTTP/SandboxRequest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// A file that a service received by a form.
struct UploadedFile {
    std::string name;
    std::string mediaType;
    std::uint64_t size = 0; // bytes
    std::string path;       // at the sandbox's own address: "/files/7"
};

enum class UploadProblem { missing, several, unnamed, tooLarge };

// The one file that a multipart form has in the field, of `limit` bytes at most.
Result<const FormPart*, UploadProblem> filePart(const SandboxRequest& request, std::string_view field,
                                                std::uint64_t limit);

// The media type that the part was sent with; where that is a general one, the type of the name's extension.
std::string mediaTypeOfFile(const FormPart& part, std::string_view name);

// As the page shows it: {"name", "mediaType", "size", "url"}.
JSONObject fileState(const UploadedFile& file);

// Stores the part, for the page to open.
UploadedFile storedFile(FileStore& files, const FormPart& part, std::string name, std::string mediaType);

} // namespace zelto::sandbox
