#pragma once

#include <Platform/HTTP/HTTPHeaders.h>
#include <Platform/Result.h>
#include <Platform/URLComponents.h>
#include <ZeltoSandbox/HTTP/Spool.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// The head of a request as it came over the wire.
struct RequestHead {
    std::string method;
    std::string target;
    std::vector<HTTPHeaderField> fields;
    std::optional<std::uint64_t> contentLength; // nullopt without a body, and for a chunked one
    bool keepsAlive = true;
    bool expectsContinue = false;

    // The first one of that name.
    const std::string* field(std::string_view name) const;
    std::size_t count(std::string_view name) const;
};

// One part of a multipart/form-data body.
struct FormPart {
    std::string name;
    std::optional<std::string> fileName;
    std::string contentType; // "text/plain" where the part has none
    SpoolRange content;
};

// A parsed request to a service. The texts of query and form are decoded, "+" to a blank.
struct SandboxRequest {
    RequestHead head;
    std::string method;
    std::string host;                  // of the service, lower case
    std::string path;                  // with its escapes
    std::vector<std::string> segments; // of the path, decoded: {"1", "cards"}
    std::vector<URLQueryItem> query;
    std::shared_ptr<const SpooledBytes> body;
    std::string contentType;        // of the body, lower case, without parameters; empty if there is none
    std::vector<URLQueryItem> form; // of an application/x-www-form-urlencoded body
    std::vector<FormPart> parts;    // of a multipart/form-data body
    std::string bodyProblem;        // why `form` or `parts` could not be read
    std::string webPrefix;          // "/host/trello.com" for a browser's request, else empty
    std::uint64_t connection = 0;

    // The first of that name; nullopt if there is none.
    std::optional<std::string> queryValue(std::string_view name) const;
    std::optional<std::string> formValue(std::string_view name) const;

    // The same, of the query, a form, or a part that is no file, of which at most `maximum` bytes are read.
    std::optional<std::string> parameter(std::string_view name, std::size_t maximum = 65536) const;
};

std::optional<std::string> valueOf(const std::vector<URLQueryItem>& items, std::string_view name);

// A parameter of a header such as "multipart/form-data; boundary=x"; nullopt if there is none.
std::optional<std::string> headerParameter(std::string_view value, std::string_view name);

// "Multipart/Form-Data; boundary=x": "multipart/form-data".
std::string mediaTypeOf(std::string_view contentType);

// One part of a multipart body of any kind.
struct BodyPart {
    std::vector<HTTPHeaderField> fields;
    SpoolRange content;

    // The first one of that name.
    const std::string* field(std::string_view name) const;
};

// The parts of a multipart/related body, strictly by RFC 2046; a line end may stand before the first
// boundary. The text of an error says what is wrong.
Result<std::vector<BodyPart>, std::string> parseRelated(const SpoolRange& body, std::string_view boundary);

// The parts of a form by RFC 7578 and RFC 2046, strictly: the boundary comes first, every part has a name,
// headers end in CRLF, nothing is missing. The text of an error says what is wrong.
Result<std::vector<FormPart>, std::string> parseMultipart(const SpoolRange& body, std::string_view boundary);

} // namespace zelto::sandbox
