#include <ZeltoSandbox/GoogleDrive/GoogleDriveJSON.h>

#include <ZeltoSandbox/DateText.h>

namespace zelto::sandbox {

namespace {

// Google writes numbers of 64 bits as texts.
JSONValue quotaText(std::uint64_t number) {
    return std::to_string(number);
}

std::string extensionOf(std::string_view name) {
    const auto dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string() : std::string(name.substr(dot + 1));
}

} // namespace

JSONObject googleAboutJSON(const Drive& drive, const SandboxDrives& settings) {
    JSONObject quota{{"usage", quotaText(drive.usedBytes())},
                     {"usageInDrive", quotaText(drive.usedBytes())},
                     {"usageInDriveTrash", "0"}};
    if (settings.space) {
        quota.set("limit", quotaText(*settings.space));
    }
    return {{"kind", "drive#about"},
            {"user", JSONObject{{"kind", "drive#user"},
                                {"displayName", googleUserName},
                                {"me", true},
                                {"permissionId", "05740000000000000001"},
                                {"emailAddress", googleUserEmail}}},
            {"storageQuota", std::move(quota)},
            {"maxUploadSize", "5242880000000"},
            {"canCreateDrives", false}};
}

JSONObject googleFileJSON(const DriveEntry& entry) {
    const auto& first = entry.revisions.empty() ? entry.date : entry.revisions.front().date;
    JSONObject json{{"kind", "drive#file"},
                    {"id", entry.id},
                    {"name", entry.name},
                    {"mimeType", entry.mediaType},
                    {"trashed", entry.isInTrash()},
                    {"explicitlyTrashed", entry.isTrashed},
                    {"parents", JSONValue::Array{entry.parent->id}},
                    {"createdTime", dateText(first, 3)},
                    {"modifiedTime", dateText(entry.date, 3)},
                    {"ownedByMe", true},
                    {"version", quotaText(entry.revisions.size() + 1)}};
    if (!entry.revisions.empty()) {
        json.set("size", quotaText(entry.size()));
        json.set("quotaBytesUsed", quotaText(entry.size()));
        json.set("headRevisionId", entry.revisions.back().id);
        json.set("originalFilename", entry.name);
        json.set("fileExtension", extensionOf(entry.name));
    }
    return json;
}

JSONObject googleListJSON(JSONValue::Array files) {
    return {{"kind", "drive#fileList"}, {"incompleteSearch", false}, {"files", std::move(files)}};
}

JSONValue googleAboutSchema() {
    const Drive empty(
        {[](std::uint64_t) { return std::string(); }, [](std::uint64_t) { return std::string(); }});
    return googleAboutJSON(empty, {.space = 0});
}

JSONValue googleFileSchema() {
    const DriveEntry folder;
    DriveEntry file{.id = {}, .parent = &folder, .name = {}, .mediaType = {}, .date = {}, .revisions = {}};
    file.revisions.emplace_back();
    return googleFileJSON(file);
}

JSONValue googleListSchema() {
    auto json = googleListJSON({googleFileSchema()});
    json.set("nextPageToken", "");
    return json;
}

} // namespace zelto::sandbox
