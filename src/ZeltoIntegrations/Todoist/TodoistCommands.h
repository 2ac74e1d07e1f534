#pragma once

// What the sync endpoint is asked to do.

#include <Platform/JSON/JSONValue.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

// A file that was uploaded.
struct TodoistFile {
    std::string name;
    JSONValue info; // the response of the upload, which refers to the file

    bool operator==(const TodoistFile&) const = default;
};

// A task that is to be made.
struct TodoistTask {
    std::string title;
    std::string projectID;
    std::string text; // its first comment
    std::optional<std::string> dueDate;
    std::vector<TodoistFile> files;
};

// One command of a request.
struct TodoistCommand {
    std::string type;
    std::string temp_id; // stands for what is made until the service has given it an identifier
    std::string uuid;    // names the command in the response
    JSONValue args;
    std::string name; // what it is about, for reports; not sent

    bool operator==(const TodoistCommand&) const = default;
};

ZELTO_JSON_CODED(TodoistCommand);

// Adds the task, then a comment with its text, then one for each file. Each call gives fresh identifiers.
std::vector<TodoistCommand> commandsFor(TodoistTask task);

} // namespace zelto
