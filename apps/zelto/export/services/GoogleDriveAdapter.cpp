#include "export/services/GoogleDriveAdapter.h"

#include <Platform/JSON/JSONValue.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace zelto::cli {

namespace {

const std::string root = "root"; // as the service names it too

// Of an upload that is one request. https://developers.google.com/workspace/drive/api/guides/manage-uploads
constexpr std::uint64_t uploadLimit = 5'000'000;

// Of the file that the request uploads after its description.
std::string uploadedName(const SentRequest& request) {
    const auto json = JSONValue::parse(request.parts.front().text.value_or(""));
    const auto* name = json ? json->find("name") : nullptr;
    const auto* text = name ? name->asString() : nullptr;
    return text ? *text : "";
}

} // namespace

TargetTree GoogleDriveAdapter::targetTree(const DriveFolders& data) {
    return targetTreeOf(data, root);
}

void GoogleDriveAdapter::setTarget(GoogleDriveExporterConfiguration& configuration, const DriveFolders& data,
                                   const TargetPath& path) {
    const auto* folder = folderAt(data, path, root);
    configuration.selectedFolderId = folder ? std::optional(folder->id) : std::nullopt;
}

std::string GoogleDriveAdapter::targetName(const GoogleDriveExporterConfiguration& configuration) {
    return configuration.selectedFolderId.value_or("");
}

std::vector<std::string> GoogleDriveAdapter::existingFiles(const GoogleDriveExporter& exporter) {
    std::vector<std::string> names;
    std::ranges::transform(exporter.existedFiles(), std::back_inserter(names), &GoogleDriveFile::name);
    return names;
}

std::string GoogleDriveAdapter::standInResponse(const SentRequest& request) {
    return request.method == "GET" ? R"({"files":[]})" : R"({"id":"NEW-FILE","name":"NEW-FILE"})";
}

std::vector<PassedLimit> GoogleDriveAdapter::passedLimits(const GoogleDriveExporter&,
                                                          const GoogleDriveExporterConfiguration&,
                                                          const std::vector<SentRequest>& requests) {
    LimitCheck limits;
    for (const auto& request : requests) {
        if (!request.parts.empty()) {
            limits.check("the file \"" + uploadedName(request) + "\"", request.parts.back().size, uploadLimit,
                         "bytes");
        }
    }
    return limits.passed();
}

} // namespace zelto::cli
