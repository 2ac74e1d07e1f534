#include <ZeltoSandbox/Notion/NotionStore.h>

#include <ZeltoSandbox/Notion/NotionContent.h>

#include <Platform/ISO8601.h>
#include <Platform/UUID.h>

#include <algorithm>
#include <array>

namespace zelto::sandbox {

namespace {

constexpr std::size_t demoCount = 5; // of databases
constexpr std::string_view lastEdit = "2026-03-02T09:00:00Z";
constexpr TimeInterval editPause{60};

// The identifier of a demo object, by a digit for its kind and its number.
std::string demoID(char kind, std::size_t number) {
    constexpr std::size_t digits = 12;
    const auto text = std::to_string(number);
    return std::string("5a0db0c0-7a3e-4c1d-9f5") + kind + "-" + std::string(digits - text.size(), '0') + text;
}

Date editOf(std::size_t number) {
    return *parseISO8601(lastEdit) - editPause * static_cast<double>(number);
}

// A title of several items, the last one in bold.
JSONValue::Array composedTitle(std::initializer_list<std::string_view> parts) {
    JSONValue::Array title;
    for (const auto part : parts) {
        title.push_back(notionRichText(part).front());
    }
    title.back().asObject()->find("annotations")->set("bold", true);
    return title;
}

std::array<NotionDatabaseRecord, demoCount> demoDatabases() {
    return {{
        {.id = {}, .title = composedTitle({"Journal – ", "Größe & Maß ", "📓"})},
        {.id = {},
         .title = notionRichText("Aufgaben im Büro ✅"),
         .titleProperty = "Aufgabe",
         .textProperty = "Bemerkung"},
        {.id = {},
         .title = notionRichText("読書リスト"),
         .titleProperty = "タイトル",
         .textProperty = "メモ"},
        // Notion shows it as "Untitled".
        {.id = {}, .title = {}},
        {.id = {}, .title = notionRichText("Only for others"), .isShared = false},
    }};
}

NotionDatabaseRecord additionalDatabase(std::size_t number) {
    return {.id = {}, .title = notionRichText("Database " + std::to_string(number))};
}

} // namespace

NotionStore::NotionStore() {
    pages_.push_back({.id = demoID('b', 1),
                      .databaseID = std::nullopt,
                      .title = notionRichText("Start here 👋"),
                      .text = {},
                      .blocks = {},
                      .date = *parseISO8601(lastEdit)});
}

const std::vector<NotionDatabaseRecord>& NotionStore::databases(std::size_t additional) {
    if (databases_.size() == demoCount + additional) {
        return databases_;
    }
    const auto demo = demoDatabases();
    databases_.assign(demo.begin(), demo.end());
    for (std::size_t i = 1; i <= additional; ++i) {
        databases_.push_back(additionalDatabase(i));
    }
    for (std::size_t i = 0; i < databases_.size(); ++i) {
        databases_[i].id = demoID('a', i + 1);
        databases_[i].edited = editOf(i);
    }
    return databases_;
}

const NotionDatabaseRecord* NotionStore::findShared(std::string_view id, std::size_t additional) {
    const auto& all = databases(additional);
    const auto found = std::ranges::find(all, id, &NotionDatabaseRecord::id);
    return found == all.end() || !found->isShared ? nullptr : &*found;
}

bool NotionStore::hasSpace(std::uint64_t size) const {
    return pages_.size() < maximumPageCount && content_ + size <= maximumContent;
}

const NotionPageRecord& NotionStore::addPage(NotionPageRecord page, std::uint64_t size) {
    page.id = uuid();
    page.date = Date::now();
    content_ += size;
    return pages_.emplace_back(std::move(page));
}

} // namespace zelto::sandbox
