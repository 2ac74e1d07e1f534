#pragma once

#include "base/Outcome.h"
#include "commandline/CommandLine.h"

#include <ZeltoIntegrations/Content/IntegrationAttachments.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>

#include <Platform/Date.h>
#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto::cli {

// What the options of an export change of the configuration that its exporter offers.
struct ConfigurationEdits {
    std::optional<std::string> whole; // JSON, from --config
    std::optional<IntegrationExportContentType> saveAs;
    std::optional<std::string> title;
    std::optional<std::string> note;
    std::optional<std::vector<std::string>> tags;
    std::optional<Date> due;
    std::optional<Date> deadline;
    std::vector<std::string> attach;
    std::optional<std::string> target; // applied by the session, which knows what there is

    static Outcome<ConfigurationEdits> from(const Invocation& invocation);
};

// The type of that case name; a failure names all of them.
Outcome<IntegrationExportContentType> contentTypeNamed(const std::string& name);

std::unexpected<Failure> notTaken(const std::string& service, const std::string& what,
                                  const std::string& option);
Outcome<void> select(IntegrationAttachments& attachments, const std::vector<std::string>& names);
Failure configurationFailure(const DecodingError& error);

// Changes the fields that are asked for; one that the service's configuration does not have is wrong usage.
template <class C>
Outcome<void> apply(const ConfigurationEdits& edits, C& configuration, const std::string& service) {
    if (edits.whole) {
        auto decoded = JSONDecoder().decode<C>(*edits.whole);
        if (!decoded) {
            return failure(configurationFailure(decoded.error()));
        }
        configuration = *std::move(decoded);
    }
    if (edits.saveAs) {
        configuration.saveAs = *edits.saveAs;
    }
    if (edits.title) {
        configuration.userTitle = edits.title;
    }
    if (edits.note) {
        if constexpr (requires { configuration.userNote = edits.note; }) {
            configuration.userNote = edits.note;
        } else {
            return notTaken(service, "note", "--note");
        }
    }
    if (edits.tags) {
        if constexpr (requires { configuration.tags = *edits.tags; }) {
            configuration.tags = *edits.tags;
        } else {
            return notTaken(service, "tags", "--tags");
        }
    }
    if (edits.due) {
        if constexpr (requires { configuration.dueDate = edits.due; }) {
            configuration.dueDate = edits.due;
        } else {
            return notTaken(service, "due date", "--due");
        }
    }
    if (edits.deadline) {
        if constexpr (requires { configuration.deadline = edits.deadline; }) {
            configuration.deadline = edits.deadline;
        } else {
            return notTaken(service, "deadline", "--deadline");
        }
    }
    if (!edits.attach.empty()) {
        if constexpr (requires { configuration.attachments.list; }) {
            return select(configuration.attachments, edits.attach);
        } else if (edits.attach != std::vector<std::string>{"none"}) {
            return notTaken(service, "attachments", "--attach");
        }
    }
    return {};
}

} // namespace zelto::cli
