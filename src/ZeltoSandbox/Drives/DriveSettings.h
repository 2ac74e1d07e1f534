#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/SandboxDrives.h>
#include <ZeltoSandbox/SettingMembers.h>

namespace zelto::sandbox {

// What the setting "drives" of the control API has to be. Those of its members that are left out stay as they
// are.
Wanted readDriveSettings(SandboxDrives& settings, const JSONValue& json);

JSONObject driveSettingsJSON(const SandboxDrives& settings);

} // namespace zelto::sandbox
