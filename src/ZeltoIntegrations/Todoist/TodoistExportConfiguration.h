#pragma once

#include <ZeltoIntegrations/Content/IntegrationAttachments.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Content/IntegrationLink.h>
#include <ZeltoIntegrations/Todoist/TodoistRecords.h>

#include <Platform/Date.h>
#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

class TodoistExporter;

struct TodoistExportConfiguration {
    using Exporter = TodoistExporter;

    std::optional<TodoistSaveToInfo> saveTo;
    IntegrationExportContentType saveAs = IntegrationExportContentType::emailWeblink;
    std::optional<Date> dueDate; // the task is due at this time of the user's day
    IntegrationAttachments attachments;
    std::optional<std::string> userTitle; // the task's name
    IntegrationWebLinkVisibility webLinkVisibility = IntegrationWebLinkVisibility::onlyMe;
    std::optional<std::uint64_t> teamId;
    std::vector<IntegrationExportContentType> supportedContentTypes;

    IntegrationExportContentType exportType() const { return saveAs; }

    std::vector<std::string> diff(const TodoistExportConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    // The title and the date are of one task alone.
    void storeLastExportInfo(TodoistExporter& exporter) const;

    bool operator==(const TodoistExportConfiguration&) const = default;
};

ZELTO_JSON_CODED(TodoistExportConfiguration);
ZELTO_JSON_KEYS(TodoistExportConfiguration);

} // namespace zelto
