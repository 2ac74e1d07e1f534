#include <ZeltoSandbox/Hubspot/HubspotObjects.h>

#include <ZeltoSandbox/Hubspot/HubspotProperties.h>
#include <ZeltoSandbox/JSONBody.h>

#include <Platform/ASCII.h>

#include <algorithm>
#include <array>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumNoteBody = 65'536; // characters
constexpr std::size_t maximumTextLine = 65'536;

constexpr std::array<std::string_view, 13> contactProperties = {
    "email",   "firstname", "lastname", "lifecyclestage", "hs_lead_status",   "phone",  "mobilephone",
    "company", "jobtitle",  "website",  "city",           "hubspot_owner_id", "country"};

constexpr std::array<std::string_view, 8> leadStatuses = {"NEW",       "OPEN",        "IN_PROGRESS",
                                                          "OPEN_DEAL", "UNQUALIFIED", "ATTEMPTED_TO_CONTACT",
                                                          "CONNECTED", "BAD_TIMING"};

constexpr std::array<std::string_view, 9> emailProperties = {
    "hs_timestamp",  "hs_email_headers", "hs_email_direction", "hs_email_subject", "hs_email_text",
    "hs_email_html", "hs_email_status",  "hs_attachment_ids",  "hubspot_owner_id"};

constexpr std::array<std::string_view, 4> noteProperties = {"hs_timestamp", "hs_note_body",
                                                            "hs_attachment_ids", "hubspot_owner_id"};

constexpr std::array<std::string_view, 12> meetingProperties = {
    "hs_timestamp",          "hs_meeting_title",    "hs_meeting_body",     "hs_internal_meeting_notes",
    "hs_meeting_start_time", "hs_meeting_end_time", "hs_meeting_location", "hs_meeting_external_url",
    "hs_meeting_outcome",    "hs_activity_type",    "hs_attachment_ids",   "hubspot_owner_id"};

constexpr std::array<std::string_view, 3> directions = {"EMAIL", "INCOMING_EMAIL", "FORWARDED_EMAIL"};
constexpr std::array<std::string_view, 5> emailStatuses = {"BOUNCED", "FAILED", "SCHEDULED", "SENDING",
                                                           "SENT"};
constexpr std::array<std::string_view, 5> outcomes = {"SCHEDULED", "COMPLETED", "RESCHEDULED", "NO SHOW",
                                                      "CANCELED"};

// What differs between the types of activities.
struct ActivityFacts {
    std::string_view name;
    std::int64_t contactAssociation; // HubSpot's number for it
    std::span<const std::string_view> properties;
};

ActivityFacts factsOf(HubspotActivityType type) {
    switch (type) {
    case HubspotActivityType::email:
        return {"EMAIL", 198, emailProperties};
    case HubspotActivityType::meeting:
        return {"MEETING_EVENT", 200, meetingProperties};
    case HubspotActivityType::note:
        return {"NOTE", 202, noteProperties};
    }
    return {};
}

// A member that HubSpot does not know; nullopt if there is none.
std::optional<HubspotError> memberProblem(const JSONValue& body,
                                          std::initializer_list<std::string_view> known) {
    for (const auto& [key, value] : *body.asObject()) {
        if (std::ranges::find(known, key) == known.end()) {
            return HubspotError::invalidInput("there is no member \"" + key + "\"");
        }
    }
    return std::nullopt;
}

// What is wrong with a person of an e-mail's headers; empty if nothing is.
std::string personProblem(std::string_view name, const JSONValue& person) {
    if (!person.asObject()) {
        return std::string(name) + " is no object";
    }
    const auto* email = textMember(person, "email");
    if (!email || email->empty()) {
        return std::string(name) + " has no email";
    }
    for (const auto& [key, value] : *person.asObject()) {
        if (!value.asString() && !value.isNull()) {
            return std::string(name) + " has a member that is no text: " + key;
        }
    }
    return {};
}

std::string peopleProblem(std::string_view name, const JSONValue* people) {
    const auto* list = people ? people->asArray() : nullptr;
    if (!list) {
        return std::string(name) + " is no list";
    }
    for (const auto& person : *list) {
        if (auto problem = personProblem(name, person); !problem.empty()) {
            return problem;
        }
    }
    return {};
}

std::string headersProblem(const JSONValue& headers) {
    const auto* from = headers.find("from");
    if (auto problem = from ? personProblem("from", *from) : std::string("there is no from");
        !problem.empty()) {
        return problem;
    }
    if (auto problem = peopleProblem("to", headers.find("to")); !problem.empty()) {
        return problem;
    }
    for (const auto* name : {"cc", "bcc"}) {
        const auto* people = headers.find(name);
        if (auto problem = people ? peopleProblem(name, people) : std::string(); !problem.empty()) {
            return problem;
        }
    }
    return {};
}

JSONObject readHeaders(HubspotProperties& properties) {
    constexpr std::string_view property = "hs_email_headers";
    const auto text = properties.text(property);
    if (text.empty()) {
        return {};
    }
    const auto headers = JSONValue::parse(text);
    const auto problem = !headers               ? "it is not JSON: " + headers.error().message()
                         : !headers->asObject() ? std::string("it is no JSON object")
                                                : headersProblem(*headers);
    if (!problem.empty()) {
        properties.fail(property, "INVALID_JSON", "Property \"hs_email_headers\" is not valid: " + problem);
        return {};
    }
    return *headers->asObject();
}

void checkProperties(HubspotActivityRecord& activity, HubspotProperties& properties) {
    switch (activity.type) {
    case HubspotActivityType::email:
        properties.oneOf("hs_email_direction", directions);
        properties.oneOf("hs_email_status", emailStatuses);
        properties.limit("hs_email_subject", maximumTextLine);
        activity.headers = readHeaders(properties);
        return;
    case HubspotActivityType::note:
        properties.limit("hs_note_body", maximumNoteBody);
        return;
    case HubspotActivityType::meeting:
        properties.limit("hs_meeting_title", maximumTextLine);
        properties.oneOf("hs_meeting_outcome", outcomes);
        properties.date("hs_meeting_start_time");
        properties.date("hs_meeting_end_time");
        return;
    }
}

// What is wrong with a type of an association; nullopt if nothing is.
std::optional<HubspotError> typeProblem(const JSONValue& type, const ActivityFacts& facts) {
    const auto* category = textMember(type, "associationCategory");
    const auto* number = type.find("associationTypeId");
    if (!category || !number || !number->asInt64()) {
        return HubspotError::invalidInput("Some required fields were not set: [associationCategory, "
                                          "associationTypeId]");
    }
    constexpr std::array<std::string_view, 3> categories = {"HUBSPOT_DEFINED", "USER_DEFINED",
                                                            "INTEGRATOR_DEFINED"};
    if (std::ranges::find(categories, *category) == categories.end()) {
        return HubspotError::invalidInput("\"associationCategory\" is none of [HUBSPOT_DEFINED, "
                                          "USER_DEFINED, INTEGRATOR_DEFINED]");
    }
    if (*category != categories.front() || number->asInt64() != facts.contactAssociation) {
        return HubspotError::validation("Association type " + std::to_string(*number->asInt64()) + " of " +
                                        *category + " does not go from " + std::string(facts.name) +
                                        " to CONTACT");
    }
    return std::nullopt;
}

std::optional<HubspotError> associationProblem(const JSONValue& association, const ActivityFacts& facts,
                                               const HasHubspotContact& hasContact) {
    const auto* to = association.find("to");
    const auto* id = to ? textMember(*to, "id") : nullptr;
    const auto* list = association.find("types");
    const auto* types = list ? list->asArray() : nullptr;
    if (!id || !types || types->empty()) {
        return HubspotError::invalidInput(
            "an association needs \"to\" with a text \"id\", and a list \"types\" that is not empty");
    }
    for (const auto& type : *types) {
        if (auto problem = typeProblem(type, facts)) {
            return problem;
        }
    }
    if (!hasContact(*id)) {
        const JSONObject error{{"message", "CONTACT=" + *id + " is not valid"}};
        return HubspotError::validation("One or more associations are not valid: CONTACT=" + *id +
                                            " does not exist",
                                        {{"errors", JSONValue::Array{error}}});
    }
    return std::nullopt;
}

std::optional<HubspotError> readAssociations(HubspotActivityRecord& activity, const JSONValue& body,
                                             const ActivityFacts& facts,
                                             const HasHubspotContact& hasContact) {
    const auto* associations = body.find("associations");
    if (!associations) {
        return std::nullopt;
    }
    if (!associations->asArray()) {
        return HubspotError::invalidInput("\"associations\" has to be a list");
    }
    for (const auto& each : *associations->asArray()) {
        if (auto problem = associationProblem(each, facts, hasContact)) {
            return problem;
        }
        const auto& id = *each.find("to")->find("id")->asString();
        if (std::ranges::find(activity.contacts, id) == activity.contacts.end()) {
            activity.contacts.push_back(id);
        }
    }
    return std::nullopt;
}

} // namespace

Result<HubspotContactRecord, HubspotError> readHubspotContact(const JSONValue& body,
                                                              std::span<const HubspotStageRecord> stages) {
    if (auto problem = memberProblem(body, {"properties"})) {
        return failure(*std::move(problem));
    }
    HubspotProperties properties(body, contactProperties);
    const auto email = properties.text("email");
    if (!email.empty() && !isHubspotEmail(email)) {
        properties.fail("email", "INVALID_EMAIL", "Email address " + email + " is invalid");
    }
    std::vector<std::string_view> stageIDs;
    for (const auto& stage : stages) {
        if (!stage.isArchived) {
            stageIDs.push_back(stage.id);
        }
    }
    properties.oneOf("lifecyclestage", stageIDs);
    properties.oneOf("hs_lead_status", leadStatuses);
    if (auto problem = properties.problem()) {
        return failure(*std::move(problem));
    }
    if (email.empty() && properties.text("firstname").empty() && properties.text("lastname").empty()) {
        return failure(HubspotError::missingProperties("CONTACT", {"email", "firstname", "lastname"}));
    }
    HubspotContactRecord contact{.properties = properties.all()};
    if (!email.empty()) {
        contact.properties.set("email", toASCIILower(email));
    }
    return contact;
}

Result<HubspotActivityRecord, HubspotError>
readHubspotActivity(HubspotActivityType type, const JSONValue& body, const HasHubspotContact& hasContact) {
    const auto facts = factsOf(type);
    if (auto problem = memberProblem(body, {"properties", "associations"})) {
        return failure(*std::move(problem));
    }
    HubspotActivityRecord activity{.type = type};
    HubspotProperties properties(body, facts.properties);
    const auto timestamp = properties.date("hs_timestamp");
    checkProperties(activity, properties);
    if (auto problem = properties.problem()) {
        return failure(*std::move(problem));
    }
    if (!timestamp) {
        return failure(HubspotError::missingProperties(facts.name, {"hs_timestamp"}));
    }
    if (auto problem = readAssociations(activity, body, facts, hasContact)) {
        return failure(*std::move(problem));
    }
    activity.timestamp = *timestamp;
    activity.properties = properties.all();
    return activity;
}

} // namespace zelto::sandbox
