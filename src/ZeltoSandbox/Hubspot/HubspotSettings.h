#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/SandboxHubspot.h>
#include <ZeltoSandbox/SettingMembers.h>

namespace zelto::sandbox {

// What the setting "hubspot" of the control API has to be. Those of its members that are left out stay as
// they are.
Wanted readHubspotSettings(SandboxHubspot& settings, const JSONValue& json);

JSONObject hubspotSettingsJSON(const SandboxHubspot& settings);

} // namespace zelto::sandbox
