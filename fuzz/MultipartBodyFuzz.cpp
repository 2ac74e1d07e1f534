// Bytes become the names, types and values of a form; a parser of multipart bodies must find the same parts
// again.

#include "Require.h"

#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace {

using zelto::ExporterHelperMultipartData;
using zelto::ExportServiceHelper;
using zelto::HTTPBody;
using zelto::require;

struct Part {
    std::string headers;
    std::string content;
};

std::string takeUntil(std::string_view& text, std::string_view end) {
    const auto at = text.find(end);
    require(at != std::string_view::npos);
    std::string taken(text.substr(0, at));
    text.remove_prefix(at + end.size());
    return taken;
}

// By RFC 2046: a delimiter is at the beginning of a line, headers end at the first empty line.
std::vector<Part> parse(std::string_view body, const std::string& boundary) {
    std::vector<Part> parts;
    require(body.starts_with("--" + boundary));
    body.remove_prefix(2 + boundary.size());
    while (!body.starts_with("--")) {
        require(body.starts_with("\r\n"));
        body.remove_prefix(2);
        auto headers = takeUntil(body, "\r\n\r\n");
        parts.push_back({std::move(headers), takeUntil(body, "\r\n--" + boundary)});
    }
    require(body == "--\r\n");
    return parts;
}

// A quoted name contains neither quotes nor line ends, and every other byte unchanged.
void requireName(std::string_view& header, std::string_view name) {
    const auto quoted = takeUntil(header, "\"");
    std::string expected;
    for (const char each : name) {
        expected += each == '"' ? "%22" : each == '\r' ? "%0D" : each == '\n' ? "%0A" : std::string(1, each);
    }
    require(quoted == expected);
}

// The pieces of the input, separated by bytes 0xFE.
std::vector<std::string> pieces(std::string_view input) {
    std::vector<std::string> found(1);
    for (const char each : input) {
        if (each == '\xFE') {
            found.emplace_back();
        } else {
            found.back() += each;
        }
    }
    return found;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto inputs = pieces({reinterpret_cast<const char*>(bytes), size});
    std::vector<ExporterHelperMultipartData> parts;
    ExportServiceHelper::Parameters parameters;
    for (std::size_t index = 0; index + 3 < inputs.size(); index += 4) {
        parts.push_back({.name = inputs[index],
                         .dataId = inputs[index + 1],
                         .contentType = inputs[index + 2],
                         .data = HTTPBody(inputs[index + 3])});
        parameters[inputs[index]] = inputs[index + 3];
    }

    zelto::URLRequest request(*zelto::URL::parse("https://example.com/"));
    ExportServiceHelper::makeFilesUploadRequest(parameters, parts, request);
    const auto type = *request.headers.value("Content-Type");
    require(zelto::isValidHeaderValue(type));
    const auto data = *request.body->bytes();
    require(data.size() == request.body->size());
    const auto found = parse(zelto::viewOf(data), type.substr(type.find('=') + 1));
    require(found.size() == parameters.size() + parts.size());

    std::size_t index = 0;
    for (const auto& [name, value] : parameters) {
        std::string_view header = found[index].headers;
        takeUntil(header, "form-data; name=\"");
        requireName(header, name);
        require(header.empty() && found[index].content == value);
        ++index;
    }
    for (const auto& part : parts) {
        std::string_view header = found[index].headers;
        takeUntil(header, "form-data; name=\"");
        requireName(header, part.name);
        takeUntil(header, "; filename=\"");
        requireName(header, part.dataId);
        require(header.starts_with("\r\nContent-Type: "));
        require(header.substr(2).find_first_of("\r\n") == std::string_view::npos);
        require(zelto::viewOf(*part.data.bytes()) == found[index].content);
        ++index;
    }
    return 0;
}
