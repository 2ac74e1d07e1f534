#include <ZeltoIntegrations/Client/ServiceRequest.h>

#include <ZeltoCommonLogger/Logger.h>

#include <Platform/PercentEncoding.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace zelto {

namespace {

URL urlOf(std::string_view apiBaseURL, std::string_view path, const ServiceRequest::Parameters& query) {
    auto text = std::string(apiBaseURL).append(path);
    if (!query.empty()) {
        text.append("?").append(ExportServiceHelper::urlEncodedString(query));
    }
    auto url = URL::parse(text);
    if (!url) {
        std::fputs("zelto: the path of a request makes no URL\n", stderr);
        std::abort();
    }
    return *std::move(url);
}

// Logs, under the function's name, that there is none.
std::optional<HTTPBody> contentOf(const std::filesystem::path& file, std::string_view function) {
    HTTPBody content;
    if (!content.appendFile(file)) {
        Logger::shared().error("Failed to uploadFile - no file on path", function);
        return std::nullopt;
    }
    return content;
}

} // namespace

ServiceRequest::ServiceRequest(std::string method, std::string_view apiBaseURL, std::string_view path,
                               const Parameters& query)
    : request_(urlOf(apiBaseURL, path, query), std::move(method)) {}

ServiceRequest&& ServiceRequest::header(const std::string& name, std::string value) && {
    request_.headers.set(name, std::move(value));
    return std::move(*this);
}

ServiceRequest&& ServiceRequest::jsonHeaders() && {
    request_.headers.set("Content-Type", "application/json");
    request_.headers.set("Accept", "application/json");
    return std::move(*this);
}

ServiceRequest&& ServiceRequest::form(const Parameters& parameters) && {
    request_.body = HTTPBody(ExportServiceHelper::urlEncodedString(parameters));
    request_.headers.set("Content-Type", "application/x-www-form-urlencoded");
    return std::move(*this);
}

ServiceRequest&& ServiceRequest::upload(std::filesystem::path file, Parameters parameters,
                                        std::string fieldName, std::string_view function) && {
    addBody_ = [file = std::move(file), parameters = std::move(parameters), fieldName = std::move(fieldName),
                function](URLRequest& request) {
        auto content = contentOf(file, function);
        if (!content) {
            return false;
        }
        const ExporterHelperMultipartData part{.name = fieldName,
                                               .dataId = file.filename().native(),
                                               .contentType = ExportServiceHelper::mimeType(file),
                                               .data = *std::move(content)};
        ExportServiceHelper::makeFilesUploadRequest(parameters, std::vector{part}, request);
        return true;
    };
    return std::move(*this);
}

ServiceRequest&& ServiceRequest::content(std::filesystem::path file, std::string_view function) && {
    addBody_ = [file = std::move(file), function](URLRequest& request) {
        request.body = contentOf(file, function);
        return request.body.has_value();
    };
    return std::move(*this);
}

ServiceRequest&& ServiceRequest::driveUpload(std::filesystem::path file, std::string fileName,
                                             std::optional<std::string> parentId,
                                             std::string_view function) && {
    addBody_ = [file = std::move(file), fileName = std::move(fileName), parentId = std::move(parentId),
                function](URLRequest& request) {
        if (!contentOf(file, function)) {
            return false;
        }
        ExportServiceHelper::makeDriveFileUploadRequest(file, fileName, parentId, request);
        return request.body.has_value(); // not for a name that is not UTF-8
    };
    return std::move(*this);
}

ServiceRequest&& ServiceRequest::parts(const std::vector<ExporterHelperMultipartData>& parts) && {
    ExportServiceHelper::makeFilesUploadRequest({}, parts, request_);
    return std::move(*this);
}

RequestMaker ServiceRequest::maker() && {
    return [request = std::move(request_), addBody = std::move(addBody_)] -> std::optional<URLRequest> {
        auto made = request;
        if (addBody && !addBody(made)) {
            return std::nullopt;
        }
        return made;
    };
}

std::string pathSegment(std::string_view text) {
    // These two would name another folder.
    if (text == "." || text == "..") {
        return text.size() == 1 ? "%2E" : "%2E%2E";
    }
    return percentEncodeBytes(text, AllowedCharacters::pathSegment);
}

} // namespace zelto
