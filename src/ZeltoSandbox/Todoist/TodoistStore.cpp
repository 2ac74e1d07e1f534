#include <ZeltoSandbox/Todoist/TodoistStore.h>

#include <ZeltoSandbox/DateText.h>

#include <Platform/Crypto/RandomBytes.h>
#include <Platform/PercentEncoding.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

constexpr std::string_view userID = "40000001";
constexpr std::string_view userEmail = "robin@sandbox.example";
constexpr std::string_view userName = "Robin Sandbox";
constexpr std::size_t idDigits = 12;

std::string idOf(std::string_view prefix, std::uint64_t number) {
    auto digits = std::to_string(number);
    return std::string(prefix) + std::string(idDigits - std::min(idDigits, digits.size()), '0') + digits;
}

std::string resourceType(std::string_view mediaType) {
    for (const auto* type : {"image", "audio", "video"}) {
        if (mediaType.starts_with(std::string(type) + "/")) {
            return type;
        }
    }
    return "file";
}

// Todoist's dates have microseconds.
std::string dateText(Date date) {
    return sandbox::dateText(date, 6);
}

JSONValue fileOf(const TodoistStore& store, const TodoistNoteRecord& note) {
    const auto* upload = note.fileURL ? store.findUpload(*note.fileURL) : nullptr;
    return upload ? JSONValue(upload->json) : JSONValue();
}

JSONObject noteState(const TodoistStore& store, const TodoistNoteRecord& note) {
    JSONValue::Array files;
    if (const auto* upload = note.fileURL ? store.findUpload(*note.fileURL) : nullptr) {
        files.push_back(fileState(upload->file));
    }
    return {{"text", note.content}, {"files", std::move(files)}};
}

JSONObject itemState(const TodoistItemRecord& item, JSONValue::Array comments) {
    return {{"id", item.id},
            {"content", item.content},
            {"due", item.dueDate ? JSONValue(*item.dueDate) : JSONValue()},
            {"date", controlDateText(item.date)},
            {"comments", std::move(comments)}};
}

} // namespace

TodoistStore::TodoistStore() {
    for (const auto* name : {"Inbox", "Arbeit & Büro", "買い物 🛒", "Mails"}) {
        const auto number = projects_.size();
        projects_.push_back({.id = idOf("6Xpr", number), .name = name, .isInbox = number == 0});
    }
    projects_.back().parentID = projects_[1].id;
}

bool TodoistStore::hasProject(std::string_view id) const {
    return std::ranges::find(projects_, id, &TodoistProjectRecord::id) != projects_.end();
}

bool TodoistStore::hasItem(std::string_view id) const {
    return std::ranges::find(items_, id, &TodoistItemRecord::id) != items_.end();
}

const TodoistUpload* TodoistStore::findUpload(std::string_view url) const {
    const auto found = uploads_.find(url);
    return found == uploads_.end() ? nullptr : &found->second;
}

const TodoistItemRecord& TodoistStore::addItem(TodoistItemRecord item) {
    item.id = newID();
    item.date = Date::now();
    item.revision = ++revision_;
    return items_.emplace_back(std::move(item));
}

const TodoistNoteRecord& TodoistStore::addNote(TodoistNoteRecord note) {
    note.id = newID();
    note.date = Date::now();
    note.revision = ++revision_;
    return notes_.emplace_back(std::move(note));
}

const JSONObject& TodoistStore::addUpload(UploadedFile file) {
    const auto url = "https://files.todoist.com/" + randomToken(24) + "/by/" + std::string(userID) + "/as/" +
                     percentEncodeBytes(file.name, AllowedCharacters::pathSegment);
    JSONObject json{{"file_name", file.name},
                    {"file_size", file.size},
                    {"file_type", file.mediaType},
                    {"file_url", url},
                    {"resource_type", resourceType(file.mediaType)},
                    {"upload_state", "completed"}};
    return uploads_.emplace(url, TodoistUpload{std::move(file), std::move(json)}).first->second.json;
}

std::string TodoistStore::newID() {
    return idOf("6Xsb", ++lastID_);
}

JSONObject todoistUserJSON(const TodoistStore& store, bool paidPlan) {
    return {{"id", userID},
            {"email", userEmail},
            {"full_name", userName},
            {"inbox_project_id", store.projects().front().id},
            {"is_premium", paidPlan},
            {"lang", "en"},
            {"premium_status", paidPlan ? "current_personal_plan" : "not_premium"},
            {"premium_until", paidPlan ? JSONValue("2099-12-31T00:00:00.000000Z") : JSONValue()},
            {"tz_info", JSONObject{{"timezone", "Europe/Berlin"}}}};
}

JSONValue::Array todoistProjectsJSON(const TodoistStore& store) {
    JSONValue::Array all;
    for (const auto& project : store.projects()) {
        all.push_back(JSONObject{{"id", project.id},
                                 {"name", project.name},
                                 {"parent_id", project.parentID ? JSONValue(*project.parentID) : JSONValue()},
                                 {"child_order", all.size()},
                                 {"color", "charcoal"},
                                 {"inbox_project", project.isInbox},
                                 {"is_archived", false},
                                 {"is_deleted", false},
                                 {"is_favorite", false},
                                 {"view_style", "list"}});
    }
    return all;
}

JSONValue::Array todoistItemsJSON(const TodoistStore& store, std::uint64_t after) {
    JSONValue::Array all;
    for (const auto& item : store.items()) {
        if (item.revision <= after) {
            continue;
        }
        auto due = item.dueDate ? JSONValue(JSONObject{{"date", *item.dueDate},
                                                       {"timezone", nullptr},
                                                       {"string", *item.dueDate},
                                                       {"lang", "en"},
                                                       {"is_recurring", false}})
                                : JSONValue();
        all.push_back(JSONObject{{"id", item.id},
                                 {"user_id", userID},
                                 {"project_id", item.projectID},
                                 {"content", item.content},
                                 {"description", ""},
                                 {"due", std::move(due)},
                                 {"priority", 1},
                                 {"labels", JSONValue::Array()},
                                 {"parent_id", nullptr},
                                 {"added_at", dateText(item.date)},
                                 {"checked", false},
                                 {"is_deleted", false}});
    }
    return all;
}

JSONValue::Array todoistNotesJSON(const TodoistStore& store, std::uint64_t after) {
    JSONValue::Array all;
    for (const auto& note : store.notes()) {
        if (note.revision > after) {
            all.push_back(JSONObject{{"id", note.id},
                                     {"item_id", note.itemID},
                                     {"content", note.content},
                                     {"file_attachment", fileOf(store, note)},
                                     {"posted_at", dateText(note.date)},
                                     {"posted_uid", userID},
                                     {"is_deleted", false}});
        }
    }
    return all;
}

JSONObject todoistState(const TodoistStore& store, bool paidPlan) {
    std::map<std::string_view, JSONValue::Array> comments;
    for (const auto& note : store.notes()) {
        comments[note.itemID].push_back(noteState(store, note));
    }
    std::map<std::string_view, JSONValue::Array> tasks;
    for (const auto& item : store.items()) {
        tasks[item.projectID].push_back(itemState(item, std::move(comments[item.id])));
    }
    JSONValue::Array projects;
    for (const auto& project : store.projects()) {
        projects.push_back(
            JSONObject{{"id", project.id}, {"name", project.name}, {"tasks", std::move(tasks[project.id])}});
    }
    return {{"user", JSONObject{{"id", userID},
                                {"name", userName},
                                {"email", userEmail},
                                {"plan", paidPlan ? "paid" : "free"}}},
            {"projects", std::move(projects)}};
}

} // namespace zelto::sandbox
