#include <ZeltoSandbox/Hubspot/HubspotStore.h>

#include <Platform/ASCII.h>
#include <Platform/ISO8601.h>
#include <Platform/Numbers.h>
#include <Platform/Text.h>

namespace zelto::sandbox {

namespace {

constexpr std::string_view demoDate = "2026-03-02T09:00:00Z";
constexpr std::uint64_t firstDemoContact = 101;
constexpr std::uint64_t firstAdditionalContact = 1'000'001;
constexpr std::uint64_t firstAddedContact = 2'000'001;
constexpr std::uint64_t firstActivity = 3'000'001;
constexpr std::uint64_t firstAdditionalStage = 300'000'001;
constexpr std::string_view additionalAddress = "additional.contact.";
constexpr std::string_view additionalHost = "@crm.example";

std::vector<HubspotStageRecord> demoStages() {
    return {
        {"subscriber", "Subscriber"},
        {"lead", "Lead"},
        {"marketingqualifiedlead", "Marketing Qualified Lead"},
        {"salesqualifiedlead", "Sales Qualified Lead"},
        {"opportunity", "Opportunity"},
        {"customer", "Customer"},
        {"268312745", "Bestandskunde – Büro & Ärzte 🌱"},
        {"evangelist", "Evangelist"},
        {"other", "Other"},
        {"268312746", "Dormant since 2024", true},
    };
}

constexpr auto additionalEmails = "hs_additional_emails";

struct DemoContact {
    std::string_view email, firstName, lastName, stage, status, additionalEmail = {};
};

constexpr DemoContact demoContacts[] = {
    {"mira@harbour.example", "Mira", "Lindqvist", "customer", "CONNECTED"},
    {"zoe.mueller@quay.example", "Zoë", "Müller-Lüdenscheidt", "268312745", ""},
    {"o'neil+crm@quay.example", "Aoife", "O’Neil", "lead", "IN_PROGRESS"},
    {"olena@lighthouse.example", "Олена", "Ковальчук", "marketingqualifiedlead", "NEW",
     "olena.k@harbour.example"},
    {"dawen.chen@lighthouse.example", "大文", "陳", "opportunity", "OPEN_DEAL"},
    {"layla@harbour.example", "ليلى", "حداد", "", "BAD_TIMING"},
    {"newsletter@pier.example", "", "", "268312746", ""},
};

HubspotContactRecord contactOf(std::uint64_t id, const DemoContact& demo) {
    HubspotContactRecord contact{
        .id = std::to_string(id), .created = *parseISO8601(demoDate), .isDemo = true};
    const auto set = [&](std::string_view property, std::string_view value) {
        if (!value.empty()) {
            contact.properties.set(property, value);
        }
    };
    set("email", demo.email);
    set("firstname", demo.firstName);
    set("lastname", demo.lastName);
    set("lifecyclestage", demo.stage);
    set("hs_lead_status", demo.status);
    set(additionalEmails, demo.additionalEmail);
    return contact;
}

// By its number, from 1.
HubspotContactRecord additionalContact(std::uint64_t number) {
    const auto digits = std::to_string(number);
    const auto email = std::string(additionalAddress).append(digits).append(additionalHost);
    return contactOf(firstAdditionalContact + number - 1,
                     {email, "Additional", "Contact " + digits, "subscriber", ""});
}

} // namespace

std::string HubspotContactRecord::text(std::string_view property) const {
    const auto* value = properties.find(property);
    return value && value->asString() ? *value->asString() : std::string();
}

HubspotStore::HubspotStore() {
    auto id = firstDemoContact;
    for (const auto& each : demoContacts) {
        keepContact(contactOf(id++, each));
    }
}

const std::vector<HubspotStageRecord>& HubspotStore::stages(std::size_t additional) {
    auto stages = demoStages();
    if (stages_.size() != stages.size() + additional) {
        for (std::size_t i = 0; i < additional; ++i) {
            stages.push_back(
                {std::to_string(firstAdditionalStage + i), "Stage " + std::to_string(i + 1), false});
        }
        stages_ = std::move(stages);
    }
    return stages_;
}

std::optional<HubspotContactRecord> HubspotStore::findContact(std::string_view id,
                                                              std::size_t additional) const {
    if (const auto found = placesByID_.find(id); found != placesByID_.end()) {
        return contacts_[found->second];
    }
    const auto number = numberIn<std::uint64_t>(id).value_or(0);
    const bool isAdditional =
        number >= firstAdditionalContact && number - firstAdditionalContact < additional;
    return isAdditional && std::to_string(number) == id
               ? std::optional(additionalContact(number - firstAdditionalContact + 1))
               : std::nullopt;
}

std::optional<HubspotContactRecord> HubspotStore::findContactByEmail(std::string_view email,
                                                                     std::size_t additional) const {
    if (const auto found = placesByEmail_.find(foldedCase(email)); found != placesByEmail_.end()) {
        return contacts_[found->second];
    }
    const auto lower = toASCIILower(email);
    std::string_view digits = lower;
    if (!digits.starts_with(additionalAddress) || !digits.ends_with(additionalHost)) {
        return std::nullopt;
    }
    digits.remove_prefix(additionalAddress.size());
    digits.remove_suffix(std::min(additionalHost.size(), digits.size()));
    const auto number = numberIn<std::uint64_t>(digits).value_or(0);
    const bool isOne = number >= 1 && number <= additional && std::to_string(number) == digits;
    return isOne ? std::optional(additionalContact(number)) : std::nullopt;
}

void HubspotStore::keepContact(HubspotContactRecord contact) {
    const auto place = contacts_.size();
    placesByID_[contact.id] = place;
    for (const auto* property : {"email", additionalEmails}) {
        if (const auto email = contact.text(property); !email.empty()) {
            placesByEmail_[foldedCase(email)] = place;
        }
    }
    contacts_.push_back(std::move(contact));
}

const HubspotContactRecord& HubspotStore::addContact(HubspotContactRecord contact) {
    contact.id = std::to_string(firstAddedContact + contacts_.size() - std::size(demoContacts));
    contact.created = Date::now();
    keepContact(std::move(contact));
    return contacts_.back();
}

bool HubspotStore::hasSpaceForActivity(std::uint64_t size) const {
    return activities_.size() < maximumActivityCount && content_ + size <= maximumContent;
}

HubspotActivityRecord& HubspotStore::addActivity(HubspotActivityRecord activity, std::uint64_t size) {
    activity.id = std::to_string(firstActivity + activities_.size());
    activity.created = Date::now();
    content_ += size;
    return activities_.emplace_back(std::move(activity));
}

} // namespace zelto::sandbox
