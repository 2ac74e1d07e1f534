#pragma once

#include <ZeltoIntegrations/Content/IntegrationsInteractorTypes.h>
#include <ZeltoIntegrations/Hubspot/HubspotExportConfiguration.h>
#include <ZeltoIntegrations/Hubspot/HubspotPayloads.h>

#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// The parties of an e-mail that are to be contacts: the sender alone, whoever it is, or the sender and all
// recipients but the user. In their order, each address once without regard to case, as it is spelled first;
// none without an address.
std::vector<IntegrationsInteractorAddress> hubspotParties(IntegrationsInteractorAddresses addresses,
                                                          HubspotCreateContacts choice,
                                                          std::string_view userEmail);

// The attendees of a meeting but the user, in the same way.
std::vector<IntegrationsInteractorAddress>
hubspotAttendees(std::vector<IntegrationsInteractorAddress> attendees, std::string_view userEmail);

// What a party becomes as a contact, with the stage and the status that the configuration has for that
// target.
HubspotPayloadCreateContact hubspotContact(const IntegrationsInteractorAddress& party,
                                           const HubspotExportConfiguration& configuration,
                                           IntegrationExportTarget target);

} // namespace zelto
