#pragma once

#include <Platform/Date.h>
#include <Platform/JSON/JSONValue.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// Texts and blocks are as Notion's responses have them.

struct NotionDatabaseRecord {
    std::string id;
    JSONValue::Array title;
    std::string titleProperty = "Name"; // its column of titles
    std::string textProperty = "Notes"; // its column of rich text
    bool isShared = true;               // with the connection
    Date edited;
};

struct NotionPageRecord {
    std::string id;
    std::optional<std::string> databaseID; // nullopt for one of the workspace itself
    JSONValue::Array title;
    JSONValue::Array text; // of the database's column
    JSONValue::Array blocks;
    Date date;
};

// What a Notion workspace has: demo databases and a demo page with the same identifiers in every sandbox, so
// that what a client has stored of them stays valid, and the pages that were added.
class NotionStore {
  public:
    static constexpr std::size_t maximumPageCount = 20'000;
    static constexpr std::uint64_t maximumContent = std::uint64_t{32} << 20; // bytes of requests, all pages

    NotionStore();

    // The latest edited ones first; `additional` of them beside the demo ones.
    const std::vector<NotionDatabaseRecord>& databases(std::size_t additional);
    // Null for none, or for one that is not shared.
    const NotionDatabaseRecord* findShared(std::string_view id, std::size_t additional);

    // The oldest first.
    const std::deque<NotionPageRecord>& pages() const { return pages_; }

    // Whether there is space for one more, whose request has that size.
    bool hasSpace(std::uint64_t size) const;
    // Gives the page its identifier and date.
    const NotionPageRecord& addPage(NotionPageRecord page, std::uint64_t size);

  private:
    std::vector<NotionDatabaseRecord> databases_;
    std::deque<NotionPageRecord> pages_;
    std::uint64_t content_ = 0; // bytes
};

} // namespace zelto::sandbox
