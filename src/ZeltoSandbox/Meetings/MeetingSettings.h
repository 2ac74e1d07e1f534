#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/SandboxMeetings.h>
#include <ZeltoSandbox/SettingMembers.h>

namespace zelto::sandbox {

// What the setting "meetings" of the control API has to be. Those of its members that are left out stay as
// they are.
Wanted readMeetingSettings(SandboxMeetings& settings, const JSONValue& json);

JSONObject meetingSettingsJSON(const SandboxMeetings& settings);

} // namespace zelto::sandbox
