#pragma once

#include <ZeltoSandbox/Hubspot/HubspotStore.h>

#include <string_view>

namespace zelto::sandbox {

// HubSpot's JSON of what the sandbox has.

// What an access token stands for; `scopes` are separated by blanks.
JSONObject hubspotTokenJSON(std::string_view token, std::string_view scopes, std::int64_t secondsLeft);
JSONObject hubspotStageJSON(const HubspotStageRecord& stage, std::size_t place);
// With the properties that a contact is found with, which are there without a value too.
JSONObject hubspotFoundContactJSON(const HubspotContactRecord& contact);
// Of new objects, with all properties.
JSONObject hubspotContactJSON(const HubspotContactRecord& contact);
JSONObject hubspotActivityJSON(const HubspotActivityRecord& activity);

// What the page of the sandbox shows. `additional` counts the contacts beside the demo ones.
JSONObject hubspotState(const HubspotStore& store, const std::vector<HubspotStageRecord>& stages,
                        std::size_t additional);

} // namespace zelto::sandbox
