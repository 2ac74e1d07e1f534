#pragma once

#include "base/Outcome.h"
#include "commandline/CommandLine.h"
#include "export/ContactEdits.h"
#include "export/EditableFields.h"

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONValue.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto::cli {

// What a file of --config or --config-over holds: values as the record has them, but for the names of targets
// and attachments.
struct ConfigurationFile {
    std::string name;
    JSONObject members;
};

// What the options of an export change of the configuration that its exporter offers.
struct ConfigurationEdits {
    std::optional<ConfigurationFile> whole; // in place of the offered one
    std::optional<ConfigurationFile> over;  // some members of it
    std::optional<IntegrationExportContentType> saveAs;
    std::optional<std::string> title;
    std::optional<std::string> note;
    std::optional<std::vector<std::string>> tags;
    std::optional<Date> due;
    std::optional<Date> deadline;
    std::vector<std::string> attach;
    std::optional<IntegrationWebLinkVisibility> visibility;
    std::optional<std::uint64_t> team;
    // What is no field of the configuration; applied by the session.
    std::optional<std::string> target;
    std::optional<ExportFilePolicy> policy;
    ContactEdits contacts;

    static Outcome<ConfigurationEdits> from(const Invocation& invocation);
};

// The type of that case name; a failure names all of them.
Outcome<IntegrationExportContentType> contentTypeNamed(const std::string& name);

std::unexpected<Failure> notTaken(const std::string& service, const std::string& what,
                                  const std::string& option);
Outcome<void> select(IntegrationAttachments& attachments, const std::vector<std::string>& names);
// `file`: the name of the file that holds it.
Failure configurationFailure(const DecodingError& error, const std::string& file);

// Changes the fields that options ask for; one that the service's configuration does not have is wrong usage.
Outcome<void> apply(const ConfigurationEdits& edits, const EditableFields& fields,
                    const std::string& service);

// Takes these options out of the edits, and gives those that were among them.
std::vector<UnusedOption> takeUnused(ConfigurationEdits& edits, std::vector<UnusedOption> unused);

// The names of the attachments that would go along.
std::vector<std::string> selectedNames(const EditableFields& fields);

// The attachments that "all" cannot select, since the service does not take them.
std::vector<std::string> namesLeftOut(const ConfigurationEdits& edits, const EditableFields& fields);

} // namespace zelto::cli
