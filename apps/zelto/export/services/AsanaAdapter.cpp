#include "export/services/AsanaAdapter.h"

#include <ZeltoIntegrations/Asana/AsanaConstants.h>

#include <algorithm>

namespace zelto::cli {

TargetTree AsanaAdapter::targetTree(const AsanaFullData& data) {
    TargetTree tree{.levels = {"workspace", "project"}, .nodes = {}};
    for (const auto& workspace : data.workspaces) {
        auto& node = tree.nodes.emplace_back(TargetNode{workspace.id, workspace.name.value_or("")});
        for (const auto& project : workspace.projects) {
            node.children.push_back({project.id, project.name.value_or("")});
        }
    }
    return tree;
}

void AsanaAdapter::setTarget(AsanaExportConfiguration& configuration, const AsanaFullData& data,
                             const TargetPath& path) {
    const auto& workspace = data.workspaces.at(path.at(0));
    const auto self = std::ranges::find(workspace.users, data.user.id, &AsanaUser::id);
    configuration.saveTo = AsanaSaveToInfo{.workspace = workspace,
                                           .project = workspace.projects.at(path.at(1)),
                                           .user = self == workspace.users.end() ? data.user : *self};
}

std::string AsanaAdapter::targetName(const AsanaExportConfiguration& configuration) {
    if (!configuration.saveTo) {
        return {};
    }
    const auto& [workspace, project, user] = *configuration.saveTo;
    return nameOrIdentifier(workspace.name, workspace.id) + "/" + nameOrIdentifier(project.name, project.id);
}

std::vector<TargetNode> AsanaAdapter::people(const AsanaFullData& data, const TargetPath& path) {
    std::vector<TargetNode> people;
    for (const auto& user : data.workspaces.at(path.at(0)).users) {
        people.push_back({user.id, user.name.value_or("")});
    }
    return people;
}

void AsanaAdapter::setPerson(AsanaExportConfiguration& configuration, const AsanaFullData& data,
                             const TargetPath& path, std::size_t index) {
    configuration.saveTo->user = data.workspaces.at(path.at(0)).users.at(index);
}

std::string AsanaAdapter::standInResponse(const SentRequest& request) {
    return request.parts.empty() ? R"({"data":{"gid":"NEW-TASK"}})" : R"({"data":{"gid":"NEW-ATTACHMENT"}})";
}

std::vector<PassedLimit> AsanaAdapter::passedLimits(const AsanaExporter&, const AsanaExportConfiguration&,
                                                    const std::vector<SentRequest>& requests) {
    LimitCheck limits;
    limits.checkFiles(requests, static_cast<std::uint64_t>(AsanaConstants::attachmentSizeLimit));
    return limits.passed();
}

} // namespace zelto::cli
