#include <ZeltoSandbox/Dropbox/DropboxJSON.h>

#include <ZeltoSandbox/Dropbox/DropboxPaths.h>

#include <Platform/ISO8601.h>

namespace zelto::sandbox {

namespace {

constexpr std::string_view namespaceID = "5740001";

JSONObject placeOf(const DriveEntry& entry) {
    const auto path = dropboxPath(entry);
    return {{"name", entry.name}, {"path_lower", dropboxLower(path)}, {"path_display", path}};
}

// `tag` in front of all members.
JSONObject tagged(std::string_view tag, const JSONObject& members) {
    JSONObject json{{".tag", tag}};
    for (const auto& [name, value] : members) {
        json.set(name, value);
    }
    return json;
}

} // namespace

JSONObject dropboxAccountJSON() {
    return {{"account_id", "dbid:AAH4f99T0taONIb-OurWxbNQ6ywGRopQngc"},
            {"name", JSONObject{{"given_name", "Robin"},
                                {"surname", "Sandbox"},
                                {"familiar_name", "Robin"},
                                {"display_name", dropboxUserName},
                                {"abbreviated_name", "RS"}}},
            {"email", dropboxUserEmail},
            {"email_verified", true},
            {"disabled", false},
            {"country", "DE"},
            {"locale", "en"},
            {"referral_link", "https://www.dropbox.com/referrals/sandbox"},
            {"is_paired", false},
            {"account_type", JSONObject{{".tag", "basic"}}},
            {"root_info", JSONObject{{".tag", "user"},
                                     {"root_namespace_id", namespaceID},
                                     {"home_namespace_id", namespaceID}}}};
}

JSONObject dropboxMetadataJSON(const DriveEntry& entry) {
    if (entry.isTrashed) {
        return tagged("deleted", placeOf(entry));
    }
    if (entry.isFolder()) {
        auto json = tagged("folder", placeOf(entry));
        json.set("id", entry.id);
        return json;
    }
    return tagged("file", dropboxFileJSON(entry, entry.revisions.back()));
}

JSONObject dropboxFileJSON(const DriveEntry& file, const DriveRevision& revision) {
    auto json = placeOf(file);
    json.set("id", file.id);
    json.set("client_modified", iso8601(revision.date));
    json.set("server_modified", iso8601(revision.date));
    json.set("rev", revision.id);
    json.set("size", revision.content.size);
    json.set("is_downloadable", true);
    json.set("content_hash", revision.hash);
    return json;
}

} // namespace zelto::sandbox
