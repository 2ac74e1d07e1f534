#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/SandboxSlack.h>
#include <ZeltoSandbox/SettingMembers.h>

namespace zelto::sandbox {

// What the setting "slack" of the control API has to be. Those of its members that are left out stay as they
// are.
Wanted readSlackSettings(SandboxSlack& settings, const JSONValue& json);

JSONObject slackSettingsJSON(const SandboxSlack& settings);

} // namespace zelto::sandbox
