#include "export/services/TodoistAdapter.h"

#include <ZeltoIntegrations/Todoist/TodoistConstants.h>

#include <Platform/Text.h>

namespace zelto::cli {

namespace {

constexpr std::size_t maximumTaskName = 500;
constexpr std::size_t maximumCommands = 100; // of one request

// The task and its text are commands too.
constexpr std::size_t commandsBesideFiles = 2;

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
    return project.name.value_or(project.id);
}

std::string TodoistAdapter::standInResponse(const SentRequest& request) {
    return request.parts.empty() ? R"({"sync_status":{},"temp_id_mapping":{}})"
                                 : R"({"file_url":"https://NEW-FILE","resource_type":"file"})";
}

std::vector<PassedLimit> TodoistAdapter::passedLimits(const TodoistExporter& exporter,
                                                      const TodoistExportConfiguration& configuration,
                                                      const std::vector<SentRequest>& requests) {
    const auto user = exporter.myUser();
    LimitCheck limits;
    limits.check("the task's name", characterCount(configuration.userTitle.value_or("")), maximumTaskName,
                 "characters");
    limits.checkFiles(requests,
                      static_cast<std::uint64_t>(TodoistConstants::fileSizeLimit(user && user->isPremium)));
    limits.check("the list of commands", configuration.attachments.selected().size() + commandsBesideFiles,
                 maximumCommands, "commands");
    return limits.passed();
}

} // namespace zelto::cli
