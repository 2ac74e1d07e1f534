#include <ZeltoSandbox/OneNote/OneNoteJSON.h>

#include <ZeltoSandbox/DateText.h>

#include <utility>

namespace zelto::sandbox {

namespace {

constexpr auto demoDate = "2026-01-05T08:00:00Z";

std::string address(const std::string& kind, const std::string& id) {
    return "https://graph.microsoft.com/v1.0/users/me/onenote/" + kind + "/" + id;
}

JSONObject links(const std::string& id) {
    return {{"oneNoteClientUrl", JSONObject{{"href", "onenote:https://onenote.example/" + id}}},
            {"oneNoteWebUrl", JSONObject{{"href", "https://onenote.example/" + id}}}};
}

JSONObject record(const std::string& kind, const std::string& id, const std::string& date) {
    return {{"id", id},
            {"self", address(kind, id)},
            {"createdDateTime", date},
            {"lastModifiedDateTime", date},
            {"links", links(id)}};
}

JSONObject pageState(const OneNotePageRecord& page) {
    JSONValue::Array files;
    for (const auto& file : page.files) {
        files.push_back(fileState(file));
    }
    return {{"id", page.id},
            {"title", page.title},
            {"date", controlDateText(page.date)},
            {"url", page.path},
            {"files", std::move(files)}};
}

JSONObject sectionState(const OneNoteSectionRecord& section) {
    JSONValue::Array pages;
    for (const auto& page : section.pages) {
        pages.push_back(pageState(page));
    }
    return {{"id", section.id},
            {"name", section.displayName},
            {"full", section.isFull},
            {"pages", std::move(pages)}};
}

} // namespace

JSONObject oneNoteUserJSON(const OneNoteUserRecord& user) {
    return {{"@odata.context", "https://graph.microsoft.com/v1.0/$metadata#users/$entity"},
            {"businessPhones", JSONValue::Array()},
            {"displayName", user.displayName},
            {"givenName", nullptr},
            {"jobTitle", nullptr},
            {"mail", user.mail},
            {"userPrincipalName", user.userPrincipalName},
            {"id", user.id}};
}

JSONObject oneNoteNotebookJSON(const OneNoteNotebookRecord& notebook) {
    auto json = record("notebooks", notebook.id, demoDate);
    json.set("displayName", notebook.displayName);
    json.set("isDefault", false);
    json.set("userRole", "Owner");
    json.set("isShared", false);
    json.set("sectionsUrl", address("notebooks", notebook.id) + "/sections");
    return json;
}

JSONObject oneNoteSectionJSON(const OneNoteSectionRecord& section, const OneNoteNotebookRecord& notebook) {
    auto json = record("sections", section.id, demoDate);
    json.set("displayName", section.displayName);
    json.set("isDefault", false);
    json.set("pagesUrl", address("sections", section.id) + "/pages");
    json.set("parentNotebook", JSONObject{{"id", notebook.id},
                                          {"displayName", notebook.displayName},
                                          {"self", address("notebooks", notebook.id)}});
    json.set("parentSectionGroup", nullptr);
    return json;
}

JSONObject oneNotePageJSON(const OneNotePageRecord& page) {
    auto json = record("pages", page.id, dateText(page.date, 3));
    json.set("title", page.title);
    json.set("createdByAppId", "");
    json.set("contentUrl", address("pages", page.id) + "/content");
    return json;
}

JSONObject oneNoteState(const OneNoteStore& store) {
    JSONValue::Array notebooks;
    for (const auto& notebook : store.notebooks()) {
        JSONValue::Array sections;
        for (const auto& section : notebook.sections) {
            sections.push_back(sectionState(section));
        }
        notebooks.push_back(JSONObject{
            {"id", notebook.id}, {"name", notebook.displayName}, {"sections", std::move(sections)}});
    }
    return {{"user", JSONObject{{"name", store.user().displayName}, {"email", store.user().mail}}},
            {"notebooks", std::move(notebooks)}};
}

} // namespace zelto::sandbox
