#include <ZeltoSandbox/Notion/NotionJSON.h>

#include <ZeltoSandbox/DateText.h>
#include <ZeltoSandbox/Notion/NotionContent.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>

namespace zelto::sandbox {

namespace {

constexpr std::string_view botID = "b3414d65-1224-5ffe-a9f1-1b4d6ed2f1a4";
constexpr std::string_view ownerID = "8a9a3a4b-50bf-4f68-9ab2-4ff1f35ac6b1";
constexpr std::string_view ownerName = "Robin Sandbox";
constexpr std::string_view ownerEmail = "robin@sandbox.example";
constexpr std::string_view workspaceName = "Sandbox";
constexpr std::string_view titleID = "title"; // that the property of titles has in every database
constexpr std::string_view textID = "n%40Xt";

// Notion rounds its times down to the minute.
std::string minuteText(Date date) {
    constexpr int milliseconds = 3;
    constexpr double minute = 60;
    return dateText(Date::fromUnixSeconds(std::floor(date.unixSeconds() / minute) * minute), milliseconds);
}

std::string addressOf(std::string_view id) {
    auto digits = std::string(id);
    std::erase(digits, '-');
    return "https://www.notion.so/" + digits;
}

JSONObject partialUser(std::string_view id) {
    return {{"object", "user"}, {"id", id}};
}

JSONObject workspaceParent() {
    return {{"type", "workspace"}, {"workspace", true}};
}

// What databases and pages have in common.
JSONObject objectJSON(std::string_view kind, std::string_view id, Date date, std::string_view userID,
                      JSONObject parent) {
    return {{"object", kind},
            {"id", id},
            {"cover", nullptr},
            {"icon", nullptr},
            {"created_time", minuteText(date)},
            {"created_by", partialUser(userID)},
            {"last_edited_by", partialUser(userID)},
            {"last_edited_time", minuteText(date)},
            {"parent", std::move(parent)},
            {"archived", false},
            {"in_trash", false},
            {"url", addressOf(id)},
            {"public_url", nullptr}};
}

JSONObject propertyType(std::string_view id, std::string_view name, std::string_view type) {
    return {{"id", id}, {"name", name}, {"type", type}, {std::string(type), JSONObject()}};
}

JSONObject propertyValue(std::string_view id, std::string_view type, const JSONValue::Array& richText) {
    return {{"id", id}, {"type", type}, {std::string(type), richText}};
}

JSONObject pageState(const NotionPageRecord& page) {
    return {{"id", page.id},
            {"date", controlDateText(page.date)},
            {"title", page.title},
            {"text", page.text},
            {"blocks", page.blocks}};
}

} // namespace

JSONObject notionOwnerJSON() {
    return {{"object", "user"},      {"id", ownerID},    {"name", ownerName},
            {"avatar_url", nullptr}, {"type", "person"}, {"person", JSONObject{{"email", ownerEmail}}}};
}

JSONObject notionBotJSON() {
    return {{"object", "user"},
            {"id", botID},
            {"name", "Zelto"},
            {"avatar_url", nullptr},
            {"type", "bot"},
            {"bot", JSONObject{{"owner", JSONObject{{"type", "user"}, {"user", notionOwnerJSON()}}},
                               {"workspace_name", workspaceName}}}};
}

JSONObject notionDatabaseJSON(const NotionDatabaseRecord& database) {
    auto json = objectJSON("database", database.id, database.edited, ownerID, workspaceParent());
    json.set("title", database.title);
    json.set("description", JSONValue::Array());
    json.set("is_inline", false);
    json.set("properties",
             JSONObject{{database.titleProperty, propertyType(titleID, database.titleProperty, "title")},
                        {database.textProperty, propertyType(textID, database.textProperty, "rich_text")}});
    return json;
}

JSONObject notionPageJSON(const NotionPageRecord& page, const NotionDatabaseRecord* database) {
    auto parent =
        database ? JSONObject{{"type", "database_id"}, {"database_id", database->id}} : workspaceParent();
    auto json = objectJSON("page", page.id, page.date, database ? botID : ownerID, std::move(parent));
    JSONObject properties{{database ? database->titleProperty : std::string(titleID),
                           propertyValue(titleID, "title", page.title)}};
    if (database) {
        properties.set(database->textProperty, propertyValue(textID, "rich_text", page.text));
    }
    json.set("properties", std::move(properties));
    return json;
}

JSONObject notionState(const std::vector<NotionDatabaseRecord>& databases,
                       const std::deque<NotionPageRecord>& pages) {
    std::map<std::string_view, JSONValue::Array> pagesOf;
    for (const auto& page : pages) {
        if (page.databaseID) {
            pagesOf[*page.databaseID].push_back(pageState(page));
        }
    }
    JSONValue::Array all;
    for (const auto& database : databases) {
        all.push_back(JSONObject{{"id", database.id},
                                 {"title", database.title},
                                 {"isShared", database.isShared},
                                 {"columns", JSONValue::Array{database.titleProperty, database.textProperty}},
                                 {"pages", std::move(pagesOf[database.id])}});
    }
    return {{"user", JSONObject{{"name", ownerName}, {"email", ownerEmail}}},
            {"workspace", workspaceName},
            {"databases", std::move(all)}};
}

} // namespace zelto::sandbox
