#include <ZeltoIntegrations/Hubspot/HubspotContacts.h>

#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <Platform/Text.h>

#include <iterator>
#include <optional>
#include <unordered_set>
#include <utility>

namespace zelto {

namespace {

using Address = IntegrationsInteractorAddress;
using Stage = HubspotSaveContactsLifecycleStage;
using Status = HubspotSaveContactsLeadStatus;

std::vector<Address> eachOnce(std::vector<Address> addresses, std::string_view excluded) {
    std::unordered_set<std::string> known{foldedCase(excluded)};
    std::erase_if(addresses, [&](const Address& each) {
        return isBlank(each.email) || !known.insert(foldedCase(each.email)).second;
    });
    return addresses;
}

void append(std::vector<Address>& all, std::optional<std::vector<Address>> more) {
    if (more) {
        all.insert(all.end(), std::make_move_iterator(more->begin()), std::make_move_iterator(more->end()));
    }
}

std::optional<std::string> nameOrNone(const std::optional<std::string>& name) {
    return ExportServiceHelper::isNotEmpty(name) ? name : std::nullopt;
}

std::optional<std::string> stageOf(const std::optional<Stage>& choice) {
    const auto* custom = choice ? std::get_if<Stage::CustomStage>(&choice->value) : nullptr;
    return custom ? std::optional(custom->id) : std::nullopt;
}

std::optional<HubspotPayloadLeadStatus> statusOf(const std::optional<Status>& choice) {
    const auto* custom = choice ? std::get_if<Status::CustomStatus>(&choice->value) : nullptr;
    return custom ? std::optional(custom->status) : std::nullopt;
}

} // namespace

std::vector<Address> hubspotParties(IntegrationsInteractorAddresses addresses, HubspotCreateContacts choice,
                                    std::string_view userEmail) {
    std::vector<Address> all;
    if (addresses.from) {
        all.push_back(*std::move(addresses.from));
    }
    switch (choice) {
    case HubspotCreateContacts::senderOnly:
        return eachOnce(std::move(all), "");
    case HubspotCreateContacts::allExternalRecipients:
        append(all, std::move(addresses.to));
        append(all, std::move(addresses.cc));
        append(all, std::move(addresses.bcc));
        return eachOnce(std::move(all), userEmail);
    }
    return {};
}

std::vector<Address> hubspotAttendees(std::vector<Address> attendees, std::string_view userEmail) {
    return eachOnce(std::move(attendees), userEmail);
}

HubspotPayloadCreateContact hubspotContact(const Address& party,
                                           const HubspotExportConfiguration& configuration,
                                           IntegrationExportTarget target) {
    const bool isNote = target == IntegrationExportTarget::meetingNote;
    return {{.email = party.email,
             .firstname = nameOrNone(party.firstName),
             .lastname = nameOrNone(party.lastName),
             .lifecyclestage = stageOf(isNote ? configuration.noteSaveContactsLifecycleStage
                                              : configuration.emailSaveContactsLifecycleStage),
             .hs_lead_status = statusOf(isNote ? configuration.noteSaveContactsLeadStatus
                                               : configuration.emailSaveContactsLeadStatus)}};
}

} // namespace zelto
