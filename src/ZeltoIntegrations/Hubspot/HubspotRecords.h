#pragma once

#include <Platform/Enum.h>
#include <Platform/JSON/JSONCoding.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace zelto {

// Which parties of an e-mail become contacts.
enum class HubspotCreateContacts : int {
    senderOnly,
    allExternalRecipients, // the sender and all recipients, but not the user
};
ZELTO_ENUM(HubspotCreateContacts);
ZELTO_JSON_CODED(HubspotCreateContacts);

// What is made of a meeting note.
enum class HubspotNoteCreate : int { note, noteAndMeeting };
ZELTO_ENUM(HubspotNoteCreate);
ZELTO_JSON_CODED(HubspotNoteCreate);

// In JSON a text of the service: "IN_PROGRESS".
enum class HubspotPayloadLeadStatus : int {
    new_,
    open,
    inProgress,
    openDeal,
    unqualified,
    attemptedToContact,
    connected,
    badTiming,
};
ZELTO_ENUM(HubspotPayloadLeadStatus);
ZELTO_JSON_CODED(HubspotPayloadLeadStatus);

// The service's text for it.
std::string_view textOf(HubspotPayloadLeadStatus status);

// The lifecycle stage of contacts that are created. In JSON an object with one key, the name of the case.
struct HubspotSaveContactsLifecycleStage {
    struct CustomStage {
        std::string id;

        bool operator==(const CustomStage&) const = default;
    };

    // The service chooses.
    struct ContactOnly {
        bool operator==(const ContactOnly&) const = default;
    };

    std::variant<CustomStage, ContactOnly> value;

    static HubspotSaveContactsLifecycleStage customStage(std::string id) {
        return {CustomStage{std::move(id)}};
    }

    static HubspotSaveContactsLifecycleStage contactOnly() { return {ContactOnly{}}; }

    bool operator==(const HubspotSaveContactsLifecycleStage&) const = default;
};

ZELTO_JSON_CODED(HubspotSaveContactsLifecycleStage);
ZELTO_JSON_CODED(HubspotSaveContactsLifecycleStage::CustomStage);

// The lead status of contacts that are created, in the same form.
struct HubspotSaveContactsLeadStatus {
    struct CustomStatus {
        HubspotPayloadLeadStatus status;

        bool operator==(const CustomStatus&) const = default;
    };

    // None is set.
    struct ContactOnly {
        bool operator==(const ContactOnly&) const = default;
    };

    std::variant<CustomStatus, ContactOnly> value;

    static HubspotSaveContactsLeadStatus customStatus(HubspotPayloadLeadStatus status) {
        return {CustomStatus{status}};
    }

    static HubspotSaveContactsLeadStatus contactOnly() { return {ContactOnly{}}; }

    bool operator==(const HubspotSaveContactsLeadStatus&) const = default;
};

ZELTO_JSON_CODED(HubspotSaveContactsLeadStatus);
ZELTO_JSON_CODED(HubspotSaveContactsLeadStatus::CustomStatus);

// A lifecycle stage that the account has, as the service writes it.
struct HubspotPayloadContactLifecycleStage {
    std::string id;
    std::optional<std::string> label;
    std::optional<std::int64_t> displayOrder;
    bool archived = false;

    bool operator==(const HubspotPayloadContactLifecycleStage&) const = default;
};

ZELTO_JSON_CODED(HubspotPayloadContactLifecycleStage);

// What the exporter loads of an account.
struct HubspotFullData {
    std::optional<std::vector<HubspotPayloadContactLifecycleStage>> contactLifecycleStages;

    bool operator==(const HubspotFullData&) const = default;
};

ZELTO_JSON_CODED(HubspotFullData);

} // namespace zelto
