#pragma once

#include <Platform/Result.h>
#include <ZeltoSandbox/Hubspot/HubspotError.h>
#include <ZeltoSandbox/Hubspot/HubspotStore.h>

#include <functional>
#include <span>

namespace zelto::sandbox {

// A new contact, as the body of the request has it.
Result<HubspotContactRecord, HubspotError> readHubspotContact(const JSONValue& body,
                                                              std::span<const HubspotStageRecord> stages);

// The same for an activity. `hasContact` says whether there is a contact with an identifier.
using HasHubspotContact = std::function<bool(std::string_view id)>;
Result<HubspotActivityRecord, HubspotError>
readHubspotActivity(HubspotActivityType type, const JSONValue& body, const HasHubspotContact& hasContact);

} // namespace zelto::sandbox
