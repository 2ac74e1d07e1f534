#include <ZeltoIntegrations/Hubspot/HubspotRecords.h>

#include <Platform/EnumDescription.h>
#include <Platform/JSON/JSONCases.h>
#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

using Status = HubspotPayloadLeadStatus;

ZELTO_DESCRIBE_ENUM(HubspotCreateContacts, senderOnly, allExternalRecipients);
ZELTO_DESCRIBE_ENUM(HubspotNoteCreate, note, noteAndMeeting);
ZELTO_DESCRIBE_ENUM(HubspotPayloadLeadStatus, new_, open, inProgress, openDeal, unqualified,
                    attemptedToContact, connected, badTiming);

ZELTO_JSON_ENUM_CASES(HubspotCreateContacts);
ZELTO_JSON_ENUM_CASES(HubspotNoteCreate);
ZELTO_JSON_ENUM_TEXTS(HubspotPayloadLeadStatus, {Status::new_, "NEW"}, {Status::open, "OPEN"},
                      {Status::inProgress, "IN_PROGRESS"}, {Status::openDeal, "OPEN_DEAL"},
                      {Status::unqualified, "UNQUALIFIED"},
                      {Status::attemptedToContact, "ATTEMPTED_TO_CONTACT"}, {Status::connected, "CONNECTED"},
                      {Status::badTiming, "BAD_TIMING"});

ZELTO_JSON_RECORD(HubspotSaveContactsLifecycleStage::CustomStage, id);
ZELTO_JSON_CASES(HubspotSaveContactsLifecycleStage, value, "customStage", "contactOnly");
ZELTO_JSON_RECORD(HubspotSaveContactsLeadStatus::CustomStatus, status);
ZELTO_JSON_CASES(HubspotSaveContactsLeadStatus, value, "customStatus", "contactOnly");
ZELTO_JSON_RECORD(HubspotPayloadContactLifecycleStage, id, label, displayOrder, archived);
ZELTO_JSON_RECORD(HubspotFullData, contactLifecycleStages);

std::string_view textOf(HubspotPayloadLeadStatus status) {
    for (const auto& [each, text] : jsonTextsOf(std::type_identity<HubspotPayloadLeadStatus>())) {
        if (each == status) {
            return text;
        }
    }
    return {};
}

} // namespace zelto
