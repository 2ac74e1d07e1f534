#pragma once

// The service's responses, as it writes them.

#include <ZeltoIntegrations/Todoist/TodoistCommands.h>
#include <ZeltoIntegrations/Todoist/TodoistRecords.h>

#include <Platform/JSON/JSONCoding.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

struct TodoistFetchResponse {
    TodoistUser user;
    std::vector<TodoistProject> projects;

    bool operator==(const TodoistFetchResponse&) const = default;
};

ZELTO_JSON_CODED(TodoistFetchResponse);

// How a command ended: in JSON the text "ok", or an object that says why it was refused. Whatever else the
// service writes is a refusal too.
struct TodoistCommandStatus {
    std::optional<std::string> error; // in the service's words, empty where it has none; absent for "ok"

    bool operator==(const TodoistCommandStatus&) const = default;
};

ZELTO_JSON_CODED(TodoistCommandStatus);

// The response to commands. Each of them has succeeded or failed by itself.
struct TodoistUploadResponse {
    std::map<std::string, TodoistCommandStatus> sync_status; // by the commands' `uuid`
    std::map<std::string, std::string> temp_id_mapping;      // from a `temp_id` to the service's identifier

    // Why the command was refused; nullopt if it was not. One without a status was refused without a word.
    std::optional<std::string> errorOf(const TodoistCommand& command) const;
    // The same for the command that the others depend on: without a status of its own, an error of any other
    // counts as its own.
    std::optional<std::string> errorOfTask(const TodoistCommand& command) const;
    // The service's identifier of what the command made.
    std::optional<std::string> identifierOf(const TodoistCommand& command) const;

    bool operator==(const TodoistUploadResponse&) const = default;
};

ZELTO_JSON_CODED(TodoistUploadResponse);

} // namespace zelto
