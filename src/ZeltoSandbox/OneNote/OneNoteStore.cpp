#include <ZeltoSandbox/OneNote/OneNoteStore.h>

#include <utility>

namespace zelto::sandbox {

namespace {

// The n-th identifier: "1-5a4d0000-0000-4000-8000-000000000007".
std::string demoID(int number) {
    auto digits = std::to_string(number);
    digits.insert(0, 12 - digits.size(), '0');
    return "1-5a4d0000-0000-4000-8000-" + digits;
}

} // namespace

// The name to sign in with is that of a guest, which is no e-mail address.
OneNoteStore::OneNoteStore()
    : user_{.id = "5a4d000000000001",
            .displayName = "Robin Sandbox",
            .mail = "robin@sandbox.example",
            .userPrincipalName = "robin_sandbox.example#EXT#"} {
    notebooks_ = {
        {.id = {},
         .displayName = "Lighthouse",
         .sections = {{.id = {}, .displayName = "Relaunch", .pages = {}},
                      {.id = {}, .displayName = "Büro & Zuhause 🏡", .pages = {}},
                      {.id = {}, .displayName = "Archive (full)", .isFull = true, .pages = {}}}},
        {.id = {}, .displayName = "No sections yet", .sections = {}},
        {.id = {},
         .displayName = "Große Bibliothek 図書館",
         .sections = {{.id = {}, .displayName = "Читальный зал", .pages = {}},
                      {.id = {}, .displayName = "Relaunch", .pages = {}}}},
    };
    int number = 0;
    for (auto& notebook : notebooks_) {
        notebook.id = demoID(++number);
        for (auto& section : notebook.sections) {
            section.id = demoID(++number);
        }
    }
}

OneNoteSectionRecord* OneNoteStore::findSection(std::string_view id) {
    for (auto& notebook : notebooks_) {
        for (auto& section : notebook.sections) {
            if (section.id == id) {
                return &section;
            }
        }
    }
    return nullptr;
}

OneNotePageRecord& OneNoteStore::addPage(OneNoteSectionRecord& section, OneNotePageRecord page) {
    page.id = "0-5a4d" + std::to_string(++pageCount_) + "!" + section.id;
    page.date = Date::now();
    return section.pages.emplace_back(std::move(page));
}

} // namespace zelto::sandbox
