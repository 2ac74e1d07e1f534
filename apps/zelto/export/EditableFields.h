#pragma once

#include <ZeltoIntegrations/Content/IntegrationAttachments.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Content/IntegrationLink.h>

#include <Platform/Date.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto::cli {

// Where the fields lie in a service's configuration that the options of an export change; null for a field
// that the configuration does not have.
struct EditableFields {
    IntegrationExportContentType* saveAs = nullptr;
    std::optional<std::string>* title = nullptr;
    std::optional<std::string>* note = nullptr;
    std::vector<std::string>* tags = nullptr;
    std::optional<Date>* due = nullptr;
    std::optional<Date>* deadline = nullptr;
    IntegrationAttachments* attachments = nullptr;
    IntegrationWebLinkVisibility* visibility = nullptr;
    std::optional<std::uint64_t>* team = nullptr;
};

// An option that an export of some type makes no use of, and why, as the end of a sentence.
struct UnusedOption {
    std::string option; // "--title"
    std::string reason;
};

// The fields under the names that they have in most configurations. An adapter sets those that have another.
template <class Configuration> EditableFields usualFields(Configuration& configuration) {
    EditableFields fields;
    if constexpr (requires { configuration.saveAs; }) {
        fields.saveAs = &configuration.saveAs;
    }
    if constexpr (requires { configuration.userTitle; }) {
        fields.title = &configuration.userTitle;
    }
    if constexpr (requires { configuration.userNote; }) {
        fields.note = &configuration.userNote;
    }
    if constexpr (requires { configuration.tags; }) {
        fields.tags = &configuration.tags;
    }
    if constexpr (requires { configuration.dueDate; }) {
        fields.due = &configuration.dueDate;
    }
    if constexpr (requires { configuration.deadline; }) {
        fields.deadline = &configuration.deadline;
    }
    if constexpr (requires { configuration.attachments; }) {
        fields.attachments = &configuration.attachments;
    }
    if constexpr (requires { configuration.webLinkVisibility; }) {
        fields.visibility = &configuration.webLinkVisibility;
    }
    if constexpr (requires { configuration.teamId; }) {
        fields.team = &configuration.teamId;
    }
    return fields;
}

} // namespace zelto::cli
