#include "export/services/HubspotAdapter.h"

#include "accounts/ServiceNames.h"

#include <Platform/ASCII.h>
#include <Platform/JSON/JSONValue.h>
#include <Platform/Joined.h>
#include <Platform/Text.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <map>
#include <string_view>
#include <utility>

namespace zelto::cli {

namespace {

using Stage = HubspotSaveContactsLifecycleStage;
using Status = HubspotSaveContactsLeadStatus;

constexpr std::string_view none = "none"; // undoes what is remembered

constexpr std::size_t maximumLine = 65'536; // characters of a subject or a title

constexpr std::string_view contactsPath = "/crm/v3/objects/contacts";

bool isNote(IntegrationExportTarget target) {
    return target == IntegrationExportTarget::meetingNote;
}

// An option that the message's kind has no field for.
Outcome<void> checkKind(const ContactEdits& edits, IntegrationExportTarget target) {
    if (edits.contacts && isNote(target)) {
        return wrongUsage(
            "--contacts is for a mail; a meeting note belongs to those who took part: leave it out.");
    }
    if (edits.withMeeting && !isNote(target)) {
        return wrongUsage("--meeting is for a meeting note: leave it out for a mail.");
    }
    return {};
}

// In small letters and in one word: "IN_PROGRESS", "inProgress" and "in progress" are one.
std::string inOneWord(std::string_view text) {
    auto word = toASCIILower(text);
    std::erase_if(word, [](char c) { return c == ' ' || c == '_' || c == '-'; });
    return word;
}

Outcome<Status> statusNamed(const std::string& text) {
    if (text == none) {
        return Status::contactOnly();
    }
    const auto& all = casesOf<HubspotPayloadLeadStatus>();
    const auto found = std::ranges::find_if(
        all, [&](const auto& each) { return inOneWord(textOf(each.value)) == inOneWord(text); });
    if (found == std::end(all)) {
        return wrongUsage("--status takes one of " +
                          joined(all, ", ", [](const auto& each) { return textOf(each.value); }) +
                          " or none; not \"" + text + "\".");
    }
    return Status::customStatus(found->value);
}

Outcome<Stage> stageNamed(const std::string& text, const std::optional<HubspotFullData>& data,
                          const std::string& account) {
    constexpr std::string_view option = "--stage";
    if (text == none) {
        return Stage::contactOnly();
    }
    if (!data) {
        return failure(targetsUnknown(displayName(ServiceType::Hubspot), account, option));
    }
    const auto tree = HubspotAdapter::targetTree(*data);
    const auto path = findTarget(tree, text, account, option);
    return path ? Outcome<Stage>(Stage::customStage(nodeAt(tree, *path).id)) : failure(path.error());
}

// A text of the properties of an object that is made; empty where it is missing.
std::string propertyOf(const SentRequest& request, std::string_view key) {
    const auto body = JSONValue::parse(request.text.value_or(""));
    const auto* properties = body ? body->find("properties") : nullptr;
    const auto* value = properties ? properties->find(key) : nullptr;
    const auto* text = value ? value->asString() : nullptr;
    return text ? *text : std::string();
}

bool isLookUp(const SentRequest& request) {
    return request.method == "GET" && request.url.contains(std::string(contactsPath) + "/");
}

} // namespace

TargetTree HubspotAdapter::targetTree(const HubspotFullData& data) {
    auto stages = data.contactLifecycleStages.value_or(std::vector<HubspotPayloadContactLifecycleStage>());
    std::erase_if(stages, &HubspotPayloadContactLifecycleStage::archived);
    // Which keeps the order of equals.
    std::multimap<std::int64_t, const HubspotPayloadContactLifecycleStage*> ordered;
    for (const auto& stage : stages) {
        constexpr auto last = std::numeric_limits<std::int64_t>::max();
        ordered.emplace(stage.displayOrder.value_or(last), &stage);
    }
    TargetTree tree{.levels = {"lifecycle stage"}, .nodes = {}, .option = "--stage"};
    for (const auto& [order, stage] : ordered) {
        tree.nodes.push_back({stage->id, stage->label.value_or("")});
    }
    return tree;
}

Outcome<void> HubspotAdapter::setContacts(HubspotExportConfiguration& configuration,
                                          const std::optional<HubspotFullData>& data,
                                          const ContactEdits& edits, IntegrationExportTarget target,
                                          const std::string& account) {
    if (const auto fits = checkKind(edits, target); !fits) {
        return fits;
    }
    if (edits.contacts) {
        // The command table has checked that it is one of the names, or none.
        configuration.emailCreateContacts = fromName<HubspotCreateContacts>(*edits.contacts);
    }
    if (edits.stage) {
        const auto stage = stageNamed(*edits.stage, data, account);
        if (!stage) {
            return failure(stage.error());
        }
        (isNote(target) ? configuration.noteSaveContactsLifecycleStage
                        : configuration.emailSaveContactsLifecycleStage) = *stage;
    }
    if (edits.status) {
        const auto status = statusNamed(*edits.status);
        if (!status) {
            return failure(status.error());
        }
        (isNote(target) ? configuration.noteSaveContactsLeadStatus
                        : configuration.emailSaveContactsLeadStatus) = *status;
    }
    if (edits.withMeeting) {
        configuration.noteCreate = HubspotNoteCreate::noteAndMeeting;
    }
    return {};
}

std::optional<HubspotFullData> HubspotAdapter::keptData(const HubspotExporter& exporter) {
    auto stages = exporter.contactLifecycleStages();
    return stages ? std::optional(HubspotFullData{.contactLifecycleStages = std::move(stages)})
                  : std::nullopt;
}

std::optional<RefusalAdvice> HubspotAdapter::adviceOn(const RefusedRequest& refused) {
    // Where the reason is not known, the service's sentence names the scopes.
    const bool lacksScope = !refused.reason && refused.words.contains("scopes");
    if (refused.reason == ServiceClientError::forbidden || lacksScope) {
        return RefusalAdvice{"the account's sign-in lacks a permission that this needs",
                             RefusalAdvice::Remedy::reconnect};
    }
    if (refused.reason == ServiceClientError::itemNotFound) {
        return RefusalAdvice{"a contact that it belongs to is not there any more",
                             RefusalAdvice::Remedy::again};
    }
    return std::nullopt;
}

std::string HubspotAdapter::standInResponse(const SentRequest& request) {
    if (isLookUp(request)) {
        return R"({"status":"error","category":"OBJECT_NOT_FOUND"})";
    }
    if (request.method == "GET") {
        return R"({"user":"YOUR-ADDRESS","hub_domain":"YOUR-DOMAIN"})";
    }
    const auto address = propertyOf(request, "email");
    const auto id = address.empty() ? "NEW-OBJECT" : "NEW-CONTACT-" + address;
    return JSONValue(JSONObject{{"id", id}}).text().value_or("{}");
}

int HubspotAdapter::standInStatus(const SentRequest& request) {
    constexpr int ok = 200;
    constexpr int created = 201;
    constexpr int notFound = 404;
    return isLookUp(request) ? notFound : request.method == "GET" ? ok : created;
}

std::string HubspotAdapter::assumption(const std::vector<SentRequest>& requests) {
    if (std::ranges::none_of(requests, isLookUp)) {
        return {};
    }
    return "Shown as for addresses that are no contacts yet, which are not looked up; one that is a contact is "
           "not changed.";
}

std::vector<PassedLimit> HubspotAdapter::passedLimits(const HubspotExporter& /*exporter*/,
                                                      const HubspotExportConfiguration& /*configuration*/,
                                                      const std::vector<SentRequest>& requests) {
    constexpr auto unit = "characters";
    LimitCheck limits;
    for (const auto& request : requests) {
        limits.check("the e-mail's subject", characterCount(propertyOf(request, "hs_email_subject")),
                     maximumLine, unit);
        limits.check("the meeting's title", characterCount(propertyOf(request, "hs_meeting_title")),
                     maximumLine, unit);
    }
    return limits.passed();
}

} // namespace zelto::cli
