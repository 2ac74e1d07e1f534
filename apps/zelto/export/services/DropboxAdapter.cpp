#include "export/services/DropboxAdapter.h"

#include <Platform/ASCII.h>
#include <Platform/JSON/JSONValue.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace zelto::cli {

namespace {

const std::string root = "/";

// Of one upload. https://www.dropbox.com/developers/documentation/http/documentation#files-upload
constexpr std::uint64_t uploadLimit = std::uint64_t{150} << 20;

// The name of the file that the request uploads; no value for another request.
std::optional<std::string> uploadedName(const SentRequest& request) {
    if (!request.url.ends_with("/2/files/upload")) {
        return std::nullopt;
    }
    const auto argument = std::ranges::find_if(request.headers, [](const HTTPHeaderField& field) {
        return equalIgnoringASCIICase(field.name, "Dropbox-API-Arg");
    });
    const auto json = JSONValue::parse(argument == request.headers.end() ? std::string() : argument->value);
    const auto* path = json ? json->find("path") : nullptr;
    const auto* text = path ? path->asString() : nullptr;
    return text ? text->substr(text->rfind('/') + 1) : "";
}

} // namespace

TargetTree DropboxAdapter::targetTree(const DriveFolders& data) {
    return targetTreeOf(data, root);
}

void DropboxAdapter::setTarget(DropboxExporterConfiguration& configuration, const DriveFolders& data,
                               const TargetPath& path) {
    const auto* folder = folderAt(data, path, root);
    configuration.selectedFolderPath = folder ? folder->path : std::nullopt;
}

std::string DropboxAdapter::targetName(const DropboxExporterConfiguration& configuration) {
    return configuration.selectedFolderPath.value_or("");
}

std::vector<std::string> DropboxAdapter::existingFiles(const DropboxExporter& exporter) {
    std::vector<std::string> paths;
    std::ranges::transform(exporter.existedFiles(), std::back_inserter(paths),
                           [](const DropboxMetadata& file) { return file.path_lower.value_or(file.name); });
    return paths;
}

std::string DropboxAdapter::standInResponse(const SentRequest& request) {
    return uploadedName(request) ? R"({"name":"NEW-FILE","id":"id:NEW-FILE"})"
                                 : R"({"matches":[],"has_more":false})";
}

std::vector<PassedLimit> DropboxAdapter::passedLimits(const DropboxExporter&,
                                                      const DropboxExporterConfiguration&,
                                                      const std::vector<SentRequest>& requests) {
    LimitCheck limits;
    for (const auto& request : requests) {
        if (const auto name = uploadedName(request)) {
            limits.check("the file \"" + *name + "\"", request.bodySize, uploadLimit, "bytes");
        }
    }
    return limits.passed();
}

} // namespace zelto::cli
