#pragma once

#include <Platform/JSON/JSONValue.h>
#include <Platform/Result.h>
#include <ZeltoSandbox/Todoist/TodoistError.h>
#include <ZeltoSandbox/Todoist/TodoistStore.h>

#include <map>
#include <string>
#include <vector>

namespace zelto::sandbox {

// A command of a sync request, whose members have the right types.
struct TodoistCommand {
    std::string type;
    std::string uuid;
    std::string temporaryID; // empty if it has none
    JSONObject arguments;
};

// The results of a request's commands.
struct TodoistOutcome {
    JSONObject statuses; // by uuid: "ok" or an error
    JSONObject mapping;  // from temporary identifiers to the created ones
    std::string problem; // the first error; empty if there is none
};

// Executes sync commands. A command whose uuid an earlier request has executed is not repeated; its status
// and identifier are those of then.
class TodoistCommands {
  public:
    static constexpr std::size_t maximumCount = 100; // of a request

    explicit TodoistCommands(TodoistStore& store) : store_(store) {}

    // The commands of a request; an error refuses all of them.
    static Result<std::vector<TodoistCommand>, TodoistError> read(const JSONValue& json);

    TodoistOutcome execute(const std::vector<TodoistCommand>& commands);

  private:
    struct Executed {
        std::string temporaryID;
        std::string id;
    };

    using Created = Result<std::string, TodoistError>;

    Created execute(const TodoistCommand& command, const JSONObject& mapping);
    Created addItem(const JSONObject& arguments);
    Created addNote(const JSONObject& arguments, const JSONObject& mapping);
    Result<std::string, TodoistError> itemOf(const JSONObject& arguments, const JSONObject& mapping) const;

    TodoistStore& store_;
    std::map<std::string, Executed, std::less<>> executed_; // by uuid
};

} // namespace zelto::sandbox
