#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/SandboxService.h>

#include <optional>
#include <string>

namespace zelto::sandbox {

// Reads those settings that the object has. Gives a sentence that says what is wrong, after which the
// settings may be changed in part; nullopt if nothing is.
std::optional<std::string> readSettings(SandboxSettings& settings, const JSONObject& json);

JSONObject settingsJSON(const SandboxSettings& settings);

} // namespace zelto::sandbox
