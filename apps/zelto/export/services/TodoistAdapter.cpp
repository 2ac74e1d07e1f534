#include "export/services/TodoistAdapter.h"

#include <ZeltoIntegrations/Todoist/TodoistConstants.h>

#include <Platform/JSON/JSONValue.h>
#include <Platform/Text.h>

#include <string_view>
#include <utility>

namespace zelto::cli {

namespace {

// In code points, as the service counts.
constexpr std::size_t maximumTaskName = 500;
constexpr std::size_t maximumComment = 15'000;

constexpr std::size_t maximumCommands = 100; // of one request

// None of a request that has no commands.
JSONValue::Array commandsOf(const SentRequest& request) {
    const auto body = JSONValue::parse(request.text.value_or(""));
    const auto* commands = body ? body->find("commands") : nullptr;
    const auto* all = commands ? commands->asArray() : nullptr;
    return all ? *all : JSONValue::Array();
}

// A text of an object; empty where it is missing.
std::string textOf(const JSONValue& object, std::string_view key) {
    const auto* value = object.find(key);
    const auto* text = value ? value->asString() : nullptr;
    return text ? *text : std::string();
}

void checkContent(LimitCheck& limits, const JSONValue& command) {
    const auto* arguments = command.find("args");
    const auto length = arguments ? codePointCount(textOf(*arguments, "content")) : 0;
    if (textOf(command, "type") == "item_add") {
        limits.check("the task's name", length, maximumTaskName, "characters");
    } else {
        limits.check("the comment's text", length, maximumComment, "characters");
    }
}

// Every command has succeeded, and the first one has made the task.
std::string standInResult(const JSONValue::Array& commands) {
    JSONObject statuses;
    JSONObject identifiers;
    for (const auto& command : commands) {
        statuses.set(textOf(command, "uuid"), "ok");
    }
    if (!commands.empty()) {
        identifiers.set(textOf(commands.front(), "temp_id"), "NEW-TASK");
    }
    return JSONValue(
               JSONObject{{"sync_status", std::move(statuses)}, {"temp_id_mapping", std::move(identifiers)}})
        .text()
        .value_or("{}");
}

} // namespace

TargetTree TodoistAdapter::targetTree(const TodoistFullData& data) {
    TargetTree tree{.levels = {"project"}, .nodes = {}};
    for (const auto& project : data.projects) {
        tree.nodes.push_back({project.id, project.name.value_or("")});
    }
    return tree;
}

void TodoistAdapter::setTarget(TodoistExportConfiguration& configuration, const TodoistFullData& data,
                               const TargetPath& path) {
    configuration.saveTo = TodoistSaveToInfo{.project = data.projects.at(path.at(0))};
}

std::string TodoistAdapter::targetName(const TodoistExportConfiguration& configuration) {
    if (!configuration.saveTo) {
        return {};
    }
    const auto& project = configuration.saveTo->project;
    return nameOrIdentifier(project.name, project.id);
}

std::string TodoistAdapter::standInResponse(const SentRequest& request) {
    return request.parts.empty() ? standInResult(commandsOf(request))
                                 : R"({"file_url":"https://NEW-FILE","resource_type":"file"})";
}

std::vector<PassedLimit> TodoistAdapter::passedLimits(const TodoistExporter& exporter,
                                                      const TodoistExportConfiguration&,
                                                      const std::vector<SentRequest>& requests) {
    const auto user = exporter.myUser();
    LimitCheck limits;
    limits.checkFiles(requests,
                      static_cast<std::uint64_t>(TodoistConstants::fileSizeLimit(user && user->isPremium)));
    for (const auto& request : requests) {
        const auto commands = commandsOf(request);
        for (const auto& command : commands) {
            checkContent(limits, command);
        }
        limits.check("the list of commands", commands.size(), maximumCommands, "commands");
    }
    return limits.passed();
}

} // namespace zelto::cli
