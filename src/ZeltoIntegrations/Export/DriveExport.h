#pragma once

#include <ZeltoIntegrations/Content/IntegrationAttachments.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// What one export puts into a folder of a drive: the message as one file, and attachments beside it.
struct DriveExport {
    IntegrationExportContentType type = IntegrationExportContentType::pdf;
    std::string title;
    std::vector<IntegrationAttachment> attachments; // that are selected
    std::optional<std::string> folder;              // as the service names it; without one, the root
    std::optional<ExportFilePolicy> policy;

    bool overrides() const { return policy == ExportFilePolicy::overrideExisting; }

    // The name of the message's file, and those of the attachments.
    std::vector<std::string> names(const std::string& messageName) const;

    // Whether this export has put a file of the attachment's name there before it.
    bool isTwin(std::size_t index, const std::string& messageName) const;
};

// One file on its way into the folder.
template <class ListedFile> struct DriveUpload {
    std::filesystem::path file;
    std::string name;
    std::optional<std::string> folder;
    bool isMessage = false;
    bool overrides = false; // what is there by that name
    // What the clash check has found by that name; looked up where it is to be overridden.
    std::optional<ListedFile> existed;
};

} // namespace zelto
