#pragma once

#include <Platform/HTTP/HTTPHeaders.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto::cli {

// One part of a multipart body.
struct SentPart {
    std::string name; // in a form; elsewhere its number
    std::optional<std::string> fileName;
    std::string contentType;
    std::uint64_t size = 0;          // bytes, of a file in Base64 those of the file
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
    std::vector<SentPart> parts;          // of a multipart body

    bool operator==(const SentRequest&) const = default;
};

// What a request is responded to with by what stands in for its service.
struct StandInResponse {
    std::string json;
    int status = 200;
};

} // namespace zelto::cli
