#include "export/ConfigurationEdits.h"

#include <Platform/FileManager.h>
#include <Platform/ISO8601.h>
#include <Platform/JSON/JSONValue.h>
#include <Platform/Joined.h>
#include <Platform/Text.h>

#include <algorithm>

namespace zelto::cli {

namespace {

constexpr std::size_t largestConfiguration = 16 << 20;

Outcome<std::optional<Date>> dateOption(const Invocation& invocation, const std::string& name) {
    const auto text = invocation.value(name);
    if (!text) {
        return std::nullopt;
    }
    const auto date = parseISO8601(*text, MissingZone::local);
    if (!date) {
        return wrongUsage(name + " takes a date like 2026-03-05 or 2026-03-05T14:00, not \"" + *text + "\".");
    }
    return date;
}

std::vector<std::string> splitTags(const std::string& text) {
    std::vector<std::string> tags;
    for (std::size_t start = 0; start <= text.size();) {
        const auto end = std::min(text.find(',', start), text.size());
        // A blank behind a comma belongs to no tag.
        if (const auto tag = trimmed(std::string_view(text).substr(start, end - start)); !tag.empty()) {
            tags.emplace_back(tag);
        }
        start = end + 1;
    }
    return tags;
}

bool isDateKey(std::string_view key) {
    return key == "deadline" || key.ends_with("Date");
}

// People write dates as ISO 8601; the record holds seconds.
Outcome<std::string> withDatesAsNumbers(const std::string& file, const std::string& text) {
    auto value = JSONValue::parse(text);
    if (!value) {
        return failure(configurationFailure(value.error()));
    }
    if (!value->asObject()) {
        return wrongUsage(file + " holds no JSON object.", "zelto config --help");
    }
    JSONObject converted = *value->asObject();
    for (const auto& [key, member] : *value->asObject()) {
        if (const auto* written = member.asString(); written && isDateKey(key)) {
            const auto date = parseISO8601(*written, MissingZone::local);
            if (!date) {
                return wrongUsage("\"" + key + "\" of " + file +
                                      " is no date like 2026-03-05 or 2026-03-05T14:00.",
                                  "zelto config --help");
            }
            converted.set(key, date->secondsSinceReference());
        }
    }
    auto encoded = JSONValue(std::move(converted)).text();
    if (!encoded) {
        return wrongUsage(file + " cannot be read as JSON.", "zelto config --help");
    }
    return *std::move(encoded);
}

Outcome<std::optional<std::string>> wholeConfiguration(const Invocation& invocation) {
    const auto file = invocation.value("--config");
    if (!file) {
        return std::nullopt;
    }
    const auto data = FileManager::readFile(*file, largestConfiguration);
    if (!data) {
        return wrongUsage("The configuration cannot be read: " + data.error().message() + ".",
                          "zelto config --help");
    }
    auto text = withDatesAsNumbers(*file, std::string(viewOf(*data)));
    if (!text) {
        return failure(text.error());
    }
    return *std::move(text);
}

} // namespace

Failure configurationFailure(const DecodingError& error) {
    return {"wrongUsage", "The configuration does not fit: " + error.message() + ".", "zelto config --help",
            ExitStatus::wrongUsage};
}

Outcome<IntegrationExportContentType> contentTypeNamed(const std::string& name) {
    const auto type = fromName<IntegrationExportContentType>(name);
    if (type) {
        return *type;
    }
    const auto known =
        joined(casesOf<IntegrationExportContentType>(), ", ", [](const auto& each) { return each.name; });
    return wrongUsage("--as takes one of " + known + "; not \"" + name + "\".");
}

std::unexpected<Failure> notTaken(const std::string& service, const std::string& what,
                                  const std::string& option) {
    return wrongUsage(service + " takes no " + what + ": leave out " + option + ".");
}

Outcome<void> select(IntegrationAttachments& attachments, const std::vector<std::string>& names) {
    using enum IntegrationAttachmentState;
    for (auto& attachment : attachments.list) {
        if (attachment.state == selected) {
            attachment.state = allowed;
        }
    }
    for (const auto& name : names) {
        bool found = name == "all" || name == "none";
        for (auto& attachment : attachments.list) {
            if (name != "all" && attachment.name != name) {
                continue;
            }
            found = true;
            if (attachment.state == restricted && name != "all") {
                return wrongUsage("The service does not take the attachment \"" + name + "\".");
            }
            if (attachment.state == allowed) {
                attachment.state = selected;
            }
        }
        if (!found) {
            return wrongUsage("The mail has no attachment \"" + name + "\".", "zelto config --help");
        }
    }
    return {};
}

Outcome<ConfigurationEdits> ConfigurationEdits::from(const Invocation& invocation) {
    ConfigurationEdits edits;
    edits.title = invocation.value("--title");
    edits.note = invocation.value("--note");
    edits.target = invocation.value("--target");
    edits.attach = invocation.values("--attach");
    if (const auto tags = invocation.value("--tags")) {
        edits.tags = splitTags(*tags);
    }
    if (const auto name = invocation.value("--as")) {
        const auto type = contentTypeNamed(*name);
        if (!type) {
            return failure(type.error());
        }
        edits.saveAs = *type;
    }
    const auto due = dateOption(invocation, "--due");
    const auto deadline = due ? dateOption(invocation, "--deadline") : due;
    const auto whole = deadline ? wholeConfiguration(invocation) : failure(deadline.error());
    if (!whole) {
        return failure(whole.error());
    }
    edits.due = *due;
    edits.deadline = *deadline;
    edits.whole = *whole;
    return edits;
}

} // namespace zelto::cli
