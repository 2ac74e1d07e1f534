#pragma once

#include <Platform/HTTP/URLRequest.h>
#include <Platform/JSON/JSONEncoder.h>
#include <ZeltoIntegrations/Client/RequestMaker.h>
#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// One request to a service, put together as a row of the service's table says it: method, path, query,
// headers and body. It has no header and no body but those that are asked for.
class ServiceRequest {
  public:
    using Parameters = ExportServiceHelper::Parameters;

    // To the base and the path, joined as texts, with the query form-encoded after them. The process stops
    // when that is no URL: what comes from outside goes into a path by `pathSegment` alone.
    ServiceRequest(std::string method, std::string_view apiBaseURL, std::string_view path,
                   const Parameters& query = {});

    ServiceRequest&& header(const std::string& name, std::string value) &&;

    // "Content-Type" and "Accept" of JSON.
    ServiceRequest&& jsonHeaders() &&;

    // A body of JSON, without a header. For a value that has no JSON, as a text that is not UTF-8, there is
    // no request.
    template <class T> ServiceRequest&& json(const T& value, const JSONEncoder& encoder = {}) && {
        if (auto text = encoder.encode(value)) {
            request_.body = HTTPBody(*std::move(text));
        } else {
            addBody_ = [](URLRequest&) { return false; };
        }
        return std::move(*this);
    }

    // A form-encoded body with its "Content-Type".
    ServiceRequest&& form(const Parameters& parameters) &&;

    // A multipart form with the file, which is opened when the request is made by `maker`. A file that is not
    // there then, or cannot be read, is logged under the function's name, and there is no request.
    ServiceRequest&& upload(std::filesystem::path file, Parameters parameters = {},
                            std::string fieldName = "file",
                            std::string_view function = "uploadFile(fromPath:completion:)") &&;

    // A body of the file's bytes, without a header. The file is opened, and a missing one treated, as by
    // `upload`.
    ServiceRequest&& content(std::filesystem::path file, std::string_view function) &&;

    // A drive's multipart upload of the file, with its "Content-Type": its metadata, with the parent where
    // there is one, and its content in Base64. The file is opened, and a missing one treated, as by `upload`.
    ServiceRequest&& driveUpload(std::filesystem::path file, std::string fileName,
                                 std::optional<std::string> parentId, std::string_view function) &&;

    // A multipart form of these parts with its "Content-Type".
    ServiceRequest&& parts(const std::vector<ExporterHelperMultipartData>& parts) &&;

    // What a client sends. Each call makes it anew, from the file as it is then.
    RequestMaker maker() &&;

  private:
    URLRequest request_;
    std::function<bool(URLRequest&)> addBody_; // when the request is made
};

// An identifier or a name as one segment of a path.
std::string pathSegment(std::string_view text);

} // namespace zelto
