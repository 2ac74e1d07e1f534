#include <ZeltoSandbox/Drives/DriveSettings.h>

namespace zelto::sandbox {

namespace {

Wanted readAdditionalFolders(SandboxDrives& settings, const JSONValue& value) {
    return readCount(settings.additionalFolders, value, SandboxDrives::maximumAdditionalCount);
}

Wanted readAdditionalFiles(SandboxDrives& settings, const JSONValue& value) {
    return readCount(settings.additionalFiles, value, SandboxDrives::maximumAdditionalCount);
}

Wanted readSearchDelay(SandboxDrives& settings, const JSONValue& value) {
    const auto seconds = value.asDouble().value_or(-1);
    if (!(seconds >= 0)) {
        return "a number of seconds";
    }
    settings.searchDelay = TimeInterval(seconds);
    return std::nullopt;
}

Wanted readSpace(SandboxDrives& settings, const JSONValue& value) {
    settings.space = value.asUInt64();
    return value.isNull() || settings.space ? std::nullopt : Wanted("a number of bytes, or null");
}

constexpr SettingMember<SandboxDrives> members[] = {
    {"additionalFolders", readAdditionalFolders},
    {"additionalFiles", readAdditionalFiles},
    {"searchDelay", readSearchDelay},
    {"space", readSpace},
};

} // namespace

Wanted readDriveSettings(SandboxDrives& settings, const JSONValue& json) {
    return readMembers(settings, json, members);
}

JSONObject driveSettingsJSON(const SandboxDrives& settings) {
    return {{"additionalFolders", settings.additionalFolders},
            {"additionalFiles", settings.additionalFiles},
            {"searchDelay", settings.searchDelay.count()},
            {"space", settings.space ? JSONValue(*settings.space) : JSONValue()}};
}

} // namespace zelto::sandbox
