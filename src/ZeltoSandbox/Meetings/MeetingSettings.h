#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/SandboxMeetings.h>

#include <optional>
#include <string>

namespace zelto::sandbox {

// What "meetings" of the control API's settings has to be; nullopt if it is valid. Those of its members that
// are left out stay as they are.
std::optional<std::string> readMeetings(SandboxMeetings& meetings, const JSONValue& json);

JSONObject meetingSettingsJSON(const SandboxMeetings& meetings);

} // namespace zelto::sandbox
