#include <ZeltoSandbox/Asana/AsanaStore.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

constexpr std::uint64_t firstUserGID = 1200000000000001;
constexpr std::uint64_t firstWorkspaceGID = 1200000000000101;
constexpr std::uint64_t firstProjectGID = 1200000000001001;
constexpr std::uint64_t firstNewGID = 1200000000100001;
constexpr int manyProjects = 250;

std::vector<AsanaUserRecord> demoUsers() {
    std::vector<AsanaUserRecord> users;
    for (const auto& [name, email] : {std::pair{"Robin Sandbox", "robin@sandbox.example"},
                                      {"Zoë Müller", "zoe.mueller@sandbox.example"},
                                      {"Ольга Жукова", "olga@sandbox.example"},
                                      {"山田 太郎", "taro@sandbox.example"}}) {
        users.push_back({std::to_string(firstUserGID + users.size()), name, email});
    }
    return users;
}

std::vector<AsanaProjectRecord> numberedProjects() {
    std::vector<AsanaProjectRecord> projects;
    for (int i = 1; i <= manyProjects; ++i) {
        auto number = std::to_string(i);
        number.insert(0, 3 - number.size(), '0');
        projects.push_back({.gid = {}, .name = "Projekt " + number, .isArchived = i == manyProjects});
    }
    return projects;
}

} // namespace

const AsanaProjectRecord* AsanaWorkspaceRecord::findProject(std::string_view projectGID) const {
    const auto found = std::ranges::find(projects, projectGID, &AsanaProjectRecord::gid);
    return found == projects.end() ? nullptr : &*found;
}

const AsanaUserRecord* AsanaWorkspaceRecord::findUser(std::string_view user) const {
    // The account's own user is the first of every workspace.
    const auto found = std::ranges::find_if(users, [&](const AsanaUserRecord& each) {
        return each.gid == user || each.email == user || (user == "me" && &each == &users.front());
    });
    return found == users.end() ? nullptr : &*found;
}

AsanaStore::AsanaStore() : lastGID_(firstNewGID - 1) {
    const auto users = demoUsers();
    workspaces_ = {
        {.gid = {},
         .name = "Lighthouse",
         .isOrganization = true,
         .users = users,
         .projects = {{.gid = {}, .name = "Relaunch"},
                      {.gid = {}, .name = "Büro & Zuhause 🏡", .isPublic = false},
                      {.gid = {}, .name = "Last year's campaign", .isArchived = true}}},
        {.gid = {},
         .name = "Große Bibliothek 図書館",
         .isOrganization = true,
         .users = {users[0], users[3]},
         .projects = numberedProjects()},
        {.gid = {},
         .name = "No projects yet",
         .isOrganization = false,
         .users = {users[0], users[1]},
         .projects = {}},
    };
    std::uint64_t project = firstProjectGID;
    std::uint64_t number = firstWorkspaceGID;
    for (auto& workspace : workspaces_) {
        workspace.gid = std::to_string(number++);
        for (auto& each : workspace.projects) {
            each.gid = std::to_string(project++);
        }
    }
}

const AsanaWorkspaceRecord* AsanaStore::findWorkspace(std::string_view gid) const {
    const auto found = std::ranges::find(workspaces_, gid, &AsanaWorkspaceRecord::gid);
    return found == workspaces_.end() ? nullptr : &*found;
}

const AsanaWorkspaceRecord* AsanaStore::findWorkspaceOfProject(std::string_view projectGID) const {
    const auto found = std::ranges::find_if(
        workspaces_, [&](const AsanaWorkspaceRecord& each) { return each.findProject(projectGID); });
    return found == workspaces_.end() ? nullptr : &*found;
}

AsanaTaskRecord* AsanaStore::findTask(std::string_view gid) {
    // Requests are mostly for the newest tasks.
    const auto found = std::find_if(tasks_.rbegin(), tasks_.rend(),
                                    [&](const AsanaTaskRecord& task) { return task.gid == gid; });
    return found == tasks_.rend() ? nullptr : &*found;
}

AsanaTaskRecord& AsanaStore::addTask(AsanaTaskRecord task) {
    task.gid = newGID();
    task.date = Date::now();
    return tasks_.emplace_back(std::move(task));
}

AsanaAttachmentRecord& AsanaStore::addAttachment(AsanaTaskRecord& task, UploadedFile file) {
    return task.attachments.emplace_back(AsanaAttachmentRecord{newGID(), Date::now(), std::move(file)});
}

std::string AsanaStore::newGID() {
    return std::to_string(++lastGID_);
}

bool isAsanaGID(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

} // namespace zelto::sandbox
