#include <ZeltoSandbox/Todoist/TodoistCommands.h>

#include <ZeltoSandbox/JSONBody.h>

#include <Platform/ISO8601.h>
#include <Platform/Text.h>

#include <algorithm>
#include <initializer_list>
#include <set>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumItemContent = 500;    // code points, which is what Todoist counts
constexpr std::size_t maximumNoteContent = 15'000; // the same
constexpr std::size_t maximumUUID = 100;           // bytes
constexpr std::size_t dateLength = std::string_view("2026-12-24").size();
constexpr std::size_t dateTimeLength = std::string_view("2026-12-24T09:00:00").size();

// The error for an argument that is not among the allowed ones; nullopt if there is none.
std::optional<TodoistError> unknownArgument(const JSONObject& arguments,
                                            std::initializer_list<std::string_view> allowed) {
    for (const auto& [name, value] : arguments) {
        if (std::ranges::find(allowed, name) == allowed.end()) {
            return TodoistError::invalidArgument(name, "is unknown, or nothing that the sandbox has");
        }
    }
    return std::nullopt;
}

// The text of an argument, nullopt where it is missing; an error if it is no text or too long.
Result<std::optional<std::string>, TodoistError> textArgument(const JSONObject& arguments,
                                                              const std::string& name, std::size_t maximum) {
    const auto* value = arguments.find(name);
    if (!value) {
        return std::optional<std::string>();
    }
    const auto* text = value->asString();
    if (!text) {
        return failure(TodoistError::invalidArgument(name, "is not a text"));
    }
    if (codePointCount(*text) > maximum) {
        return failure(
            TodoistError::invalidArgument(name, "is longer than " + std::to_string(maximum) + " characters"));
    }
    return std::optional(*text);
}

bool isDueDate(std::string_view text) {
    const bool isUTC = text.ends_with('Z');
    const auto length = text.size() - (isUTC ? 1 : 0);
    return ((length == dateLength && !isUTC) || length == dateTimeLength) && parseISO8601(text);
}

// Due dates are objects with a date of one of the three forms that programs use.
Result<std::optional<std::string>, TodoistError> dueDate(const JSONObject& arguments) {
    const auto* due = arguments.find("due");
    if (!due || due->isNull()) {
        return std::optional<std::string>();
    }
    if (!due->asObject()) {
        return failure(TodoistError::invalidArgument("due", "is not an object"));
    }
    if (auto unknown = unknownArgument(*due->asObject(), {"date"})) {
        return failure(*std::move(unknown));
    }
    const auto* date = textMember(*due, "date");
    if (!date || !isDueDate(*date)) {
        return failure(TodoistError::invalidArgument(
            "due", "has no date of the form 2026-12-24, 2026-12-24T09:00:00 or 2026-12-24T09:00:00Z"));
    }
    return std::optional(*date);
}

Result<TodoistCommand, TodoistError> readCommand(const JSONValue& json) {
    const auto* type = textMember(json, "type");
    const auto* uuid = textMember(json, "uuid");
    const auto* arguments = json.find("args");
    const auto* temporaryID = json.find("temp_id");
    if (!type || !uuid || !arguments) {
        return failure(TodoistError::missingArgument(!type ? "type" : !uuid ? "uuid" : "args"));
    }
    if (uuid->empty() || uuid->size() > maximumUUID) {
        return failure(TodoistError::invalidArgument("uuid", "is empty or too long"));
    }
    if (!arguments->asObject()) {
        return failure(TodoistError::invalidArgument("args", "is not an object"));
    }
    if (temporaryID && !temporaryID->asString()) {
        return failure(TodoistError::invalidArgument("temp_id", "is not a text"));
    }
    return TodoistCommand{*type, *uuid, temporaryID ? *temporaryID->asString() : "", *arguments->asObject()};
}

} // namespace

Result<std::vector<TodoistCommand>, TodoistError> TodoistCommands::read(const JSONValue& json) {
    const auto* all = json.asArray();
    if (!all) {
        return failure(TodoistError::invalidArgument("commands", "is not an array"));
    }
    if (all->size() > maximumCount) {
        return failure(TodoistError::invalidArgument("commands", "has more than 100 commands"));
    }
    std::vector<TodoistCommand> commands;
    std::set<std::string> uuids;
    for (const auto& each : *all) {
        auto command = readCommand(each);
        if (!command) {
            return failure(command.error());
        }
        if (!uuids.insert(command->uuid).second) {
            return failure(TodoistError::invalidArgument("uuid", "stands in two commands"));
        }
        commands.push_back(*std::move(command));
    }
    return commands;
}

TodoistOutcome TodoistCommands::execute(const std::vector<TodoistCommand>& commands) {
    TodoistOutcome outcome;
    for (const auto& command : commands) {
        auto known = executed_.find(command.uuid);
        if (known == executed_.end()) {
            const auto created = execute(command, outcome.mapping);
            if (!created) {
                outcome.statuses.set(command.uuid, created.error().json());
                outcome.problem = outcome.problem.empty() ? command.type + ": " + created.error().summary()
                                                          : outcome.problem;
                continue;
            }
            known = executed_.emplace(command.uuid, Executed{command.temporaryID, *created}).first;
        }
        outcome.statuses.set(command.uuid, "ok");
        if (!known->second.temporaryID.empty()) {
            outcome.mapping.set(known->second.temporaryID, known->second.id);
        }
    }
    return outcome;
}

TodoistCommands::Created TodoistCommands::execute(const TodoistCommand& command, const JSONObject& mapping) {
    if (!command.temporaryID.empty() && mapping.find(command.temporaryID)) {
        return failure(TodoistError::invalidTemporaryID());
    }
    if (command.type == "item_add") {
        return addItem(command.arguments);
    }
    if (command.type == "note_add") {
        return addNote(command.arguments, mapping);
    }
    return failure(TodoistError::invalidArgument("type", "is unknown, or nothing that the sandbox has"));
}

TodoistCommands::Created TodoistCommands::addItem(const JSONObject& arguments) {
    if (auto unknown = unknownArgument(arguments, {"content", "project_id", "due"})) {
        return failure(*std::move(unknown));
    }
    const auto content = textArgument(arguments, "content", maximumItemContent);
    const auto project = textArgument(arguments, "project_id", std::string::npos);
    auto due = dueDate(arguments);
    if (!content || !project || !due) {
        return failure(!content ? content.error() : !project ? project.error() : due.error());
    }
    if (!*content) {
        return failure(TodoistError::missingArgument("content"));
    }
    if (isBlank(**content)) {
        return failure(TodoistError::invalidArgument("content", "is empty"));
    }
    const auto projectID = project->value_or(store_.projects().front().id);
    if (!store_.hasProject(projectID)) {
        return failure(TodoistError::projectNotFound());
    }
    if (store_.items().size() >= TodoistStore::maximumItemCount) {
        return failure(TodoistError::ofStatus(403));
    }
    return store_
        .addItem(
            {.id = {}, .projectID = projectID, .content = **content, .dueDate = *std::move(due), .date = {}})
        .id;
}

TodoistCommands::Created TodoistCommands::addNote(const JSONObject& arguments, const JSONObject& mapping) {
    if (auto unknown = unknownArgument(arguments, {"item_id", "temp_id", "content", "file_attachment"})) {
        return failure(*std::move(unknown));
    }
    const auto item = itemOf(arguments, mapping);
    const auto content = textArgument(arguments, "content", maximumNoteContent);
    if (!item || !content) {
        return failure(!item ? item.error() : content.error());
    }
    const auto* file = arguments.find("file_attachment");
    const bool hasFile = file && !file->isNull();
    if (!hasFile && !*content) {
        return failure(TodoistError::missingArgument("content"));
    }
    if (!hasFile && isBlank(**content)) {
        return failure(TodoistError::invalidArgument("content", "is empty"));
    }
    std::optional<std::string> fileURL;
    if (hasFile) {
        const auto* url = textMember(*file, "file_url");
        const auto* upload = url ? store_.findUpload(*url) : nullptr;
        if (!upload || *file != JSONValue(upload->json)) {
            return failure(
                TodoistError::invalidArgument("file_attachment", "is not what the uploads endpoint gave"));
        }
        fileURL = *url;
    }
    if (store_.notes().size() >= TodoistStore::maximumNoteCount) {
        return failure(TodoistError::ofStatus(403));
    }
    return store_
        .addNote(
            {.id = {}, .itemID = *item, .content = content->value_or(""), .fileURL = fileURL, .date = {}})
        .id;
}

Result<std::string, TodoistError> TodoistCommands::itemOf(const JSONObject& arguments,
                                                          const JSONObject& mapping) const {
    const auto* itemID = arguments.find("item_id");
    const auto* temporaryID = arguments.find("temp_id");
    if (!itemID && !temporaryID) {
        return failure(TodoistError::missingArgument("item_id"));
    }
    if (itemID && temporaryID) {
        return failure(TodoistError::invalidArgument("temp_id", "stands beside item_id"));
    }
    const std::string name = itemID ? "item_id" : "temp_id";
    const auto* given = (itemID ? itemID : temporaryID)->asString();
    if (!given) {
        return failure(TodoistError::invalidArgument(name, "is not a text"));
    }
    const auto* created = mapping.find(*given);
    const auto id = created ? *created->asString() : *given;
    if (!store_.hasItem(id)) {
        return failure(temporaryID ? TodoistError::invalidTemporaryID() : TodoistError::itemNotFound());
    }
    return id;
}

} // namespace zelto::sandbox
