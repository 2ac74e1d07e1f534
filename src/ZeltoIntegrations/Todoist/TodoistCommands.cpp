#include <ZeltoIntegrations/Todoist/TodoistCommands.h>

#include <Platform/JSON/JSONRecordDescription.h>
#include <Platform/UUID.h>

#include <utility>

namespace zelto {

ZELTO_JSON_RECORD(TodoistCommand, type, temp_id, uuid, args);

static TodoistCommand commandOf(std::string type, JSONObject args, std::string name) {
    return {.type = std::move(type),
            .temp_id = uuid(),
            .uuid = uuid(),
            .args = std::move(args),
            .name = std::move(name)};
}

std::vector<TodoistCommand> commandsFor(TodoistTask task) {
    JSONObject item = {{"content", task.title}, {"project_id", std::move(task.projectID)}};
    if (task.dueDate) {
        item.set("due", JSONObject{{"date", *std::move(task.dueDate)}});
    }
    std::vector<TodoistCommand> commands = {commandOf("item_add", std::move(item), task.title)};
    const auto taskID = commands.front().temp_id;
    commands.push_back(commandOf("note_add", {{"temp_id", taskID}, {"content", std::move(task.text)}},
                                 std::move(task.title)));
    for (auto& file : task.files) {
        commands.push_back(commandOf(
            "note_add", {{"temp_id", taskID}, {"content", ""}, {"file_attachment", std::move(file.info)}},
            std::move(file.name)));
    }
    return commands;
}

} // namespace zelto
