#pragma once

#include <Platform/Date.h>
#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/UploadedFile.h>

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

struct TodoistProjectRecord {
    std::string id;
    std::string name;
    std::optional<std::string> parentID;
    bool isInbox = false;
};

struct TodoistItemRecord {
    std::string id;
    std::string projectID;
    std::string content;
    std::optional<std::string> dueDate; // as it was sent
    Date date;
    std::uint64_t revision = 0;
};

struct TodoistNoteRecord {
    std::string id;
    std::string itemID;
    std::string content;
    std::optional<std::string> fileURL; // of an upload
    Date date;
    std::uint64_t revision = 0;
};

// An uploaded file, and the response of the uploads endpoint.
struct TodoistUpload {
    UploadedFile file;
    JSONObject json;
};

// What a Todoist account has: demo projects with the same identifiers in every sandbox, so that what a client
// has stored of them stays valid, and the tasks, comments and files that were added.
class TodoistStore {
  public:
    static constexpr std::size_t maximumItemCount = 20'000;
    static constexpr std::size_t maximumNoteCount = 100'000;

    TodoistStore();

    const std::vector<TodoistProjectRecord>& projects() const { return projects_; }

    const std::deque<TodoistItemRecord>& items() const { return items_; }

    const std::deque<TodoistNoteRecord>& notes() const { return notes_; }

    bool hasProject(std::string_view id) const;
    bool hasItem(std::string_view id) const;
    // Null for none.
    const TodoistUpload* findUpload(std::string_view url) const;

    // Each gives the record its identifier, date and revision.
    const TodoistItemRecord& addItem(TodoistItemRecord item);
    const TodoistNoteRecord& addNote(TodoistNoteRecord note);
    // Returns the response of the uploads endpoint.
    const JSONObject& addUpload(UploadedFile file);

    // Increases with every item and note.
    std::uint64_t revision() const { return revision_; }

  private:
    std::string newID();

    std::vector<TodoistProjectRecord> projects_;
    std::deque<TodoistItemRecord> items_;
    std::deque<TodoistNoteRecord> notes_;
    std::map<std::string, TodoistUpload, std::less<>> uploads_; // by URL
    std::uint64_t revision_ = 0;
    std::uint64_t lastID_ = 0;
};

// Todoist's own JSON of them.
JSONObject todoistUserJSON(const TodoistStore& store, bool paidPlan);
JSONValue::Array todoistProjectsJSON(const TodoistStore& store);
// Those after a revision.
JSONValue::Array todoistItemsJSON(const TodoistStore& store, std::uint64_t after);
JSONValue::Array todoistNotesJSON(const TodoistStore& store, std::uint64_t after);

// What the page shows: projects with their tasks, those with their comments and files.
JSONObject todoistState(const TodoistStore& store, bool paidPlan);

} // namespace zelto::sandbox
