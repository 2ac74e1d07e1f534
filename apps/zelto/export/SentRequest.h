#pragma once

#include <Platform/HTTP/HTTPHeaders.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto::cli {

// One part of a multipart form.
struct SentPart {
    std::string name;
    std::optional<std::string> fileName;
    std::string contentType;
    std::uint64_t size = 0;          // bytes
    std::optional<std::string> text; // of a part that is no file

    bool operator==(const SentPart&) const = default;
};

// A request of an export as it would go to its service.
struct SentRequest {
    std::string method;
    std::string url;
    std::vector<HTTPHeaderField> headers; // without Host, which the URL holds
    std::uint64_t bodySize = 0;           // bytes
    std::optional<std::string> text;      // of a body that is text
    std::vector<SentPart> parts;          // of a body that is a multipart form

    bool operator==(const SentRequest&) const = default;
};

} // namespace zelto::cli
