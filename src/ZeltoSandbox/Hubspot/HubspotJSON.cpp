#include <ZeltoSandbox/Hubspot/HubspotJSON.h>

#include <ZeltoSandbox/DateText.h>

#include <Platform/ISO8601.h>

#include <algorithm>
#include <set>

namespace zelto::sandbox {

namespace {

constexpr std::string_view userEmail = "robin@sandbox.example";
constexpr std::string_view userName = "Robin Sandbox";
constexpr std::string_view hubDomain = "sandbox.example";
constexpr std::int64_t hubID = 148'000'001;
constexpr std::int64_t appID = 14'800'001;
constexpr std::int64_t userID = 44'000'001;
constexpr std::string_view allScopes = "oauth crm.objects.contacts.read crm.objects.contacts.write";
constexpr std::string_view stageDate = "2026-03-02T09:00:00.000Z";

std::string hubspotDate(Date date) {
    constexpr int milliseconds = 3;
    return dateText(date, milliseconds);
}

JSONValue::Array scopeList(std::string_view scopes) {
    JSONValue::Array list;
    while (!scopes.empty()) {
        const auto end = std::min(scopes.find(' '), scopes.size());
        if (end > 0) {
            list.push_back(scopes.substr(0, end));
        }
        scopes.remove_prefix(std::min(end + 1, scopes.size()));
    }
    return list;
}

JSONObject objectJSON(std::string_view id, JSONObject properties, Date date) {
    return {{"id", id},
            {"properties", std::move(properties)},
            {"createdAt", hubspotDate(date)},
            {"updatedAt", hubspotDate(date)},
            {"archived", false}};
}

std::string_view nameOf(HubspotActivityType type) {
    switch (type) {
    case HubspotActivityType::email:
        return "email";
    case HubspotActivityType::note:
        return "note";
    case HubspotActivityType::meeting:
        return "meeting";
    }
    return {};
}

JSONValue stageLabel(const std::string& id, const std::vector<HubspotStageRecord>& stages) {
    const auto found = std::ranges::find(stages, id, &HubspotStageRecord::id);
    return found == stages.end() ? id : found->label;
}

JSONObject contactState(const HubspotContactRecord& contact, const std::vector<HubspotStageRecord>& stages) {
    return {{"id", contact.id},
            {"date", controlDateText(contact.created)},
            {"isDemo", contact.isDemo},
            {"email", contact.text("email")},
            {"firstName", contact.text("firstname")},
            {"lastName", contact.text("lastname")},
            {"stage", stageLabel(contact.text("lifecyclestage"), stages)},
            {"status", contact.text("hs_lead_status")}};
}

JSONObject activityState(const HubspotActivityRecord& activity) {
    JSONValue::Array contacts;
    for (const auto& id : activity.contacts) {
        contacts.push_back(id);
    }
    return {{"id", activity.id},
            {"type", nameOf(activity.type)},
            {"date", controlDateText(activity.created)},
            {"timestamp", controlDateText(activity.timestamp)},
            {"properties", activity.properties},
            {"headers", activity.headers},
            {"html", activity.shownHTML},
            {"contacts", std::move(contacts)}};
}

} // namespace

JSONObject hubspotTokenJSON(std::string_view token, std::string_view scopes, std::int64_t secondsLeft) {
    return {{"token", token},
            {"user", userEmail},
            {"hub_domain", hubDomain},
            {"scopes", scopeList(scopes.empty() ? allScopes : scopes)},
            {"hub_id", hubID},
            {"app_id", appID},
            {"expires_in", secondsLeft},
            {"user_id", userID},
            {"token_type", "access"}};
}

JSONObject hubspotStageJSON(const HubspotStageRecord& stage, std::size_t place) {
    JSONObject json{{"label", stage.label},
                    {"displayOrder", place},
                    {"metadata", JSONObject{{"isClosed", "false"}}},
                    {"id", stage.id},
                    {"createdAt", stageDate},
                    {"updatedAt", stageDate},
                    {"archived", stage.isArchived},
                    {"writePermissions", "CRM_PERMISSIONS_ENFORCEMENT"}};
    if (stage.isArchived) {
        json.set("archivedAt", stageDate);
    }
    return json;
}

JSONObject hubspotFoundContactJSON(const HubspotContactRecord& contact) {
    JSONObject properties{{"createdate", hubspotDate(contact.created)}};
    for (const auto* name : {"email", "firstname", "lastname"}) {
        const auto* value = contact.properties.find(name);
        properties.set(name, value ? *value : JSONValue());
    }
    properties.set("hs_object_id", contact.id);
    properties.set("lastmodifieddate", hubspotDate(contact.created));
    return objectJSON(contact.id, std::move(properties), contact.created);
}

JSONObject hubspotContactJSON(const HubspotContactRecord& contact) {
    auto properties = contact.properties;
    properties.set("createdate", hubspotDate(contact.created));
    properties.set("hs_object_id", contact.id);
    properties.set("lastmodifieddate", hubspotDate(contact.created));
    return objectJSON(contact.id, std::move(properties), contact.created);
}

JSONObject hubspotActivityJSON(const HubspotActivityRecord& activity) {
    auto properties = activity.properties;
    properties.set("hs_createdate", hubspotDate(activity.created));
    properties.set("hs_lastmodifieddate", hubspotDate(activity.created));
    properties.set("hs_object_id", activity.id);
    properties.set("hs_timestamp", hubspotDate(activity.timestamp));
    return objectJSON(activity.id, std::move(properties), activity.created);
}

JSONObject hubspotState(const HubspotStore& store, const std::vector<HubspotStageRecord>& stages,
                        std::size_t additional) {
    JSONValue::Array contacts;
    std::set<std::string_view> listed;
    for (const auto& contact : store.contacts()) {
        contacts.push_back(contactState(contact, stages));
        listed.insert(contact.id);
    }
    JSONValue::Array activities;
    for (const auto& activity : store.activities()) {
        activities.push_back(activityState(activity));
        for (const auto& id : activity.contacts) {
            const auto contact = listed.insert(id).second ? store.findContact(id, additional) : std::nullopt;
            if (contact) {
                contacts.push_back(contactState(*contact, stages));
            }
        }
    }
    const auto hidden = store.contacts().size() + additional - contacts.size();
    return {{"user", JSONObject{{"name", userName}, {"email", userEmail}}},
            {"hub", JSONObject{{"id", hubID}, {"domain", hubDomain}}},
            {"contacts", std::move(contacts)},
            {"otherContacts", hidden},
            {"activities", std::move(activities)}};
}

} // namespace zelto::sandbox
