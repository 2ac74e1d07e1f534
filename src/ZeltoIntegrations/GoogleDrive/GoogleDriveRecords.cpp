#include <ZeltoIntegrations/GoogleDrive/GoogleDriveRecords.h>

#include <Platform/JSON/JSONRecordDescription.h>
#include <Platform/MediaTypes.h>

#include <filesystem>

namespace zelto {

ZELTO_JSON_RECORD(GoogleDriveUser, displayName, email);
ZELTO_JSON_RECORD(GoogleDriveFile, id, name, mimeType);

namespace {

bool hasExtension(const std::string& name) {
    // A dot at the end begins none.
    return std::filesystem::path(name).extension().native().size() > 1;
}

} // namespace

std::string getNameWithExtension(const GoogleDriveFile& file) {
    if (!file.mimeType || file.isOfOwnType() || hasExtension(file.name)) {
        return file.name;
    }
    const auto extension = extensionForMediaType(*file.mimeType);
    return extension ? file.name + "." + std::string(*extension) : file.name;
}

} // namespace zelto
