#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/SandboxSlack.h>

#include <optional>
#include <string>

namespace zelto::sandbox {

// What the setting "slack" of the control API has to be; nullopt if it is valid. Those of its members that
// are left out stay as they are.
std::optional<std::string> readSlackSettings(SandboxSlack& settings, const JSONValue& json);

JSONObject slackSettingsJSON(const SandboxSlack& settings);

} // namespace zelto::sandbox
