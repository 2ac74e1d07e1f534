#pragma once

#include <Platform/Date.h>
#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace zelto {

struct NotionDatabase {
    std::string id;
    std::string title;

    bool operator==(const NotionDatabase&) const = default;
};

ZELTO_JSON_CODED(NotionDatabase);

// The person whose account it is, or whom a task is assigned to.
struct NotionUser {
    std::string id;
    std::optional<std::string> name;
    std::optional<std::string> email; // where the service gives it away

    bool operator==(const NotionUser&) const = default;
};

ZELTO_JSON_CODED(NotionUser);

struct NotionStatus {
    std::string id;
    std::string name;

    bool operator==(const NotionStatus&) const = default;
};

ZELTO_JSON_CODED(NotionStatus);

// What the exporter loads of an account.
struct NotionFullData {
    NotionUser me;
    std::vector<NotionDatabase> databases;
    std::vector<NotionUser> users; // always empty: nothing asks for the users of the workspace

    bool operator==(const NotionFullData&) const = default;
};

ZELTO_JSON_CODED(NotionFullData);

// Where a page goes: a database as it was when it was chosen, as an entry of a journal or as a task. In JSON
// an object with one key, the name of the case.
struct NotionSaveToInfo {
    struct Journal {
        NotionDatabase database;

        bool operator==(const Journal&) const = default;
    };

    // All but the project is kept for the next export and not written to the page.
    struct Task {
        NotionDatabase project;
        std::optional<NotionUser> assignee;
        std::optional<NotionStatus> status;
        std::optional<Date> dueDate;

        bool operator==(const Task&) const = default;
    };

    std::variant<Journal, Task> value;

    static NotionSaveToInfo journal(NotionDatabase database) { return {Journal{std::move(database)}}; }

    static NotionSaveToInfo task(Task task) { return {std::move(task)}; }

    // The database that the page lies in.
    const NotionDatabase& parent() const;

    bool operator==(const NotionSaveToInfo&) const = default;
};

ZELTO_JSON_CODED(NotionSaveToInfo);
ZELTO_JSON_CODED(NotionSaveToInfo::Journal);
ZELTO_JSON_CODED(NotionSaveToInfo::Task);

} // namespace zelto
