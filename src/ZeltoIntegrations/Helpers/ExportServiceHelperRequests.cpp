#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <Platform/JSON/JSONValue.h>
#include <Platform/Joined.h>
#include <Platform/PercentEncoding.h>

#include <utility>

namespace zelto {

namespace {

// A name stands between quotes in its header, where a quote or a line end would end it.
std::string escapedForHeader(std::string_view name) {
    std::string escaped;
    for (const char each : name) {
        if (each == '"' || each == '\r' || each == '\n') {
            escaped += percentEncodeBytes({&each, 1}, AllowedCharacters::alphanumerics);
        } else {
            escaped += each;
        }
    }
    return escaped;
}

// A media type may have quotes of its own.
std::string withoutLineEnds(std::string text) {
    std::erase_if(text, [](char each) { return each == '\r' || each == '\n'; });
    return text;
}

class FormDataBody {
  public:
    explicit FormDataBody(URLRequest& request) : request_(request), boundary_("Boundary-" + uuid()) {
        request.headers.set("Content-Type", "multipart/form-data; boundary=" + boundary_);
    }

    void append(const ExportServiceHelper::Parameters& parameters) {
        for (const auto& [key, value] : parameters) {
            body_.append(opening(key) + "\r\n\r\n" + value + "\r\n");
        }
    }

    void append(std::string_view name, std::string_view fileName, const std::string& contentType,
                const HTTPBody& data) {
        body_.append(opening(name) + "; filename=\"" + escapedForHeader(fileName) +
                     "\"\r\nContent-Type: " + withoutLineEnds(contentType) + "\r\n\r\n");
        body_.append(data);
        body_.append("\r\n");
    }

    void finish() {
        body_.append("--" + boundary_ + "--\r\n");
        request_.body = std::move(body_);
    }

  private:
    std::string opening(std::string_view name) const {
        return "--" + boundary_ + "\r\nContent-Disposition: form-data; name=\"" + escapedForHeader(name) +
               "\"";
    }

    URLRequest& request_;
    std::string boundary_;
    HTTPBody body_;
};

// No value if the name or the parent is not UTF-8.
std::optional<std::string> driveMetadata(const std::string& fileName, const std::string& mimeType,
                                         const std::optional<std::string>& parentId) {
    JSONObject metadata = {{"name", fileName}, {"mimeType", mimeType}};
    if (parentId && !parentId->empty()) {
        metadata.set("parents", JSONValue::Array{*parentId});
    }
    auto text = JSONValue(std::move(metadata)).text();
    return text ? std::optional(std::move(*text)) : std::nullopt;
}

} // namespace

void ExportServiceHelper::makeDriveFileUploadRequest(const std::filesystem::path& filePath,
                                                     const std::string& fileName,
                                                     const std::optional<std::string>& parentId,
                                                     URLRequest& request) {
    HTTPBody content;
    if (!content.appendFileAsBase64(filePath)) {
        return;
    }
    const auto type = mimeType(filePath);
    const auto metadata = driveMetadata(fileName, type, parentId);
    if (!metadata) {
        return;
    }
    const auto boundary = uuid();
    const auto delimiter = "\r\n--" + boundary;
    HTTPBody body(delimiter + "\r\nContent-Type: application/json; charset=UTF-8\r\n\r\n" + *metadata +
                  delimiter + "\r\nContent-Type: " + type + "\r\nContent-Transfer-Encoding: base64\r\n\r\n");
    body.append(content);
    body.append(delimiter + "--");
    request.headers.set("Content-Type", "multipart/related; boundary=" + boundary);
    request.body = std::move(body);
}

void ExportServiceHelper::makeFilesUploadRequest(const Parameters& parameters,
                                                 const std::vector<std::filesystem::path>& filePaths,
                                                 URLRequest& request, std::string_view fieldName) {
    FormDataBody form(request);
    form.append(parameters);
    for (const auto& path : filePaths) {
        HTTPBody content;
        if (content.appendFile(path)) {
            form.append(fieldName, path.filename().native(), mimeType(path), content);
        }
    }
    form.finish();
}

void ExportServiceHelper::makeFilesUploadRequest(const Parameters& parameters,
                                                 const std::vector<ExporterHelperMultipartData>& parts,
                                                 URLRequest& request) {
    FormDataBody form(request);
    form.append(parameters);
    for (const auto& part : parts) {
        form.append(part.name, part.dataId, part.contentType, part.data);
    }
    form.finish();
}

std::string ExportServiceHelper::urlEncodedString(const Parameters& parameters) {
    const auto encode = [](std::string_view text) {
        return percentEncodeBytes(text, AllowedCharacters::alphanumerics);
    };
    return joined(parameters, "&",
                  [&](const auto& each) { return encode(each.first) + "=" + encode(each.second); });
}

std::optional<URLRequest> ExportServiceHelper::urlEncodedRequest(std::string_view url,
                                                                 const Parameters& parameters) {
    auto parsed = URL::parse(url);
    if (!parsed) {
        return std::nullopt;
    }
    URLRequest request(std::move(*parsed), "POST");
    request.body = HTTPBody(urlEncodedString(parameters));
    request.headers.set("Content-Length", std::to_string(request.body->size()));
    request.headers.set("Content-Type", "application/x-www-form-urlencoded");
    return request;
}

} // namespace zelto
