#include "export/ConfigurationEdits.h"

#include "export/NamedConfiguration.h"

#include <Platform/FileManager.h>
#include <Platform/ISO8601.h>
#include <Platform/JSON/JSONValue.h>
#include <Platform/Joined.h>
#include <Platform/Numbers.h>
#include <Platform/Text.h>

#include <algorithm>
#include <iterator>
#include <utility>

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
        // A blank after a comma belongs to no tag.
        if (const auto tag = trimmed(std::string_view(text).substr(start, end - start)); !tag.empty()) {
            tags.emplace_back(tag);
        }
        start = end + 1;
    }
    return tags;
}

Outcome<JSONObject> membersIn(const std::string& file) {
    const auto data = FileManager::readFile(file, largestConfiguration);
    if (!data) {
        return wrongUsage("The configuration cannot be read: " + data.error().message() + ".",
                          "zelto config --help");
    }
    auto value = JSONValue::parse(viewOf(*data));
    if (!value) {
        return failure(configurationFailure(value.error(), file));
    }
    auto* const members = value->asObject();
    if (!members) {
        return wrongUsage(file + " holds no JSON object.", "zelto config --help");
    }
    return std::move(*members);
}

// `zelto config --json` prints its result too.
void dropResult(JSONObject& members) {
    if (const auto* result = members.find("result"); result && *result == JSONValue("success")) {
        members.erase("result");
    }
}

Outcome<std::optional<ConfigurationFile>> fileOption(const Invocation& invocation,
                                                     const std::string& option) {
    const auto name = invocation.value(option);
    if (!name) {
        return std::nullopt;
    }
    auto members = membersIn(*name);
    if (!members) {
        return failure(members.error());
    }
    dropResult(*members);
    if (const auto read = readNames(*members, *name); !read) {
        return failure(read.error());
    }
    return ConfigurationFile{*name, *std::move(members)};
}

Outcome<std::optional<std::uint64_t>> teamOption(const Invocation& invocation) {
    const auto text = invocation.value("--team");
    if (!text) {
        return std::nullopt;
    }
    const auto team = numberIn<std::uint64_t>(*text);
    if (!team) {
        return wrongUsage("--team takes the number of a team, not \"" + *text + "\".");
    }
    return team;
}

// The command table has checked that it is one of the names.
template <class E> std::optional<E> caseOption(const Invocation& invocation, const std::string& name) {
    const auto text = invocation.value(name);
    return text ? fromName<E>(*text) : std::nullopt;
}

template <class T, class Field>
Outcome<void> set(const std::optional<T>& value, Field* field, const std::string& service,
                  const std::string& what, const std::string& option) {
    if (!value) {
        return {};
    }
    if (!field) {
        return notTaken(service, what, option);
    }
    *field = *value;
    return {};
}

Outcome<void> setAttachments(const std::vector<std::string>& names, IntegrationAttachments* attachments,
                             const std::string& service) {
    if (attachments) {
        return names.empty() ? Outcome<void>() : select(*attachments, names);
    }
    return names.empty() || names == std::vector<std::string>{"none"}
               ? Outcome<void>()
               : notTaken(service, "attachments", "--attach");
}

} // namespace

Outcome<void> apply(const ConfigurationEdits& edits, const EditableFields& fields,
                    const std::string& service) {
    const Outcome<void> outcomes[] = {
        set(edits.saveAs, fields.saveAs, service, "form", "--as"),
        set(edits.title, fields.title, service, "title", "--title"),
        set(edits.note, fields.note, service, "note", "--note"),
        set(edits.tags, fields.tags, service, "tags", "--tags"),
        set(edits.due, fields.due, service, "due date", "--due"),
        set(edits.deadline, fields.deadline, service, "deadline", "--deadline"),
        set(edits.visibility, fields.visibility, service, "visibility of a web link", "--visibility"),
        set(edits.team, fields.team, service, "team", "--team"),
        setAttachments(edits.attach, fields.attachments, service),
    };
    const auto failed =
        std::ranges::find_if(outcomes, [](const Outcome<void>& each) { return !each.has_value(); });
    return failed == std::end(outcomes) ? Outcome<void>() : *failed;
}

std::vector<UnusedOption> takeUnused(ConfigurationEdits& edits, std::vector<UnusedOption> unused) {
    std::erase_if(unused, [&](const UnusedOption& each) {
        auto& edit = each.option == "--title" ? edits.title : edits.note;
        return !std::exchange(edit, std::nullopt);
    });
    return unused;
}

std::vector<std::string> selectedNames(const EditableFields& fields) {
    std::vector<std::string> names;
    if (fields.attachments) {
        for (const auto& attachment : fields.attachments->selected()) {
            names.push_back(attachment.name);
        }
    }
    return names;
}

std::vector<std::string> namesLeftOut(const ConfigurationEdits& edits, const EditableFields& fields) {
    std::vector<std::string> names;
    if (fields.attachments && std::ranges::find(edits.attach, "all") != edits.attach.end()) {
        for (const auto& attachment : fields.attachments->restricted()) {
            names.push_back(attachment.name);
        }
    }
    return names;
}

Failure configurationFailure(const DecodingError& error, const std::string& file) {
    return {"wrongUsage", "The configuration in " + file + " does not fit: " + error.message() + ".",
            "zelto config --help", ExitStatus::wrongUsage};
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
    edits.visibility = caseOption<IntegrationWebLinkVisibility>(invocation, "--visibility");
    edits.policy = caseOption<ExportFilePolicy>(invocation, "--policy");
    edits.contacts = {.contacts = invocation.value("--contacts"),
                      .stage = invocation.value("--stage"),
                      .status = invocation.value("--status"),
                      .withMeeting = invocation.has("--meeting")};
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
    const auto team = deadline ? teamOption(invocation) : failure(deadline.error());
    auto whole = team ? fileOption(invocation, "--config") : failure(team.error());
    auto over = whole ? fileOption(invocation, "--config-over") : failure(whole.error());
    if (!over) {
        return failure(over.error());
    }
    edits.due = *due;
    edits.deadline = *deadline;
    edits.team = *team;
    edits.whole = *std::move(whole);
    edits.over = *std::move(over);
    return edits;
}

} // namespace zelto::cli
