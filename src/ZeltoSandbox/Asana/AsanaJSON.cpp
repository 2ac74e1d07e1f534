#include <ZeltoSandbox/Asana/AsanaJSON.h>

#include <ZeltoSandbox/DateText.h>

#include <Platform/PercentEncoding.h>

#include <algorithm>
#include <map>

namespace zelto::sandbox {

namespace {

JSONObject compact(std::string_view gid, std::string_view type, std::string_view name) {
    return {{"gid", gid}, {"resource_type", type}, {"name", name}};
}

JSONObject compact(const AsanaUserRecord& user) {
    return compact(user.gid, "user", user.name);
}

JSONObject compact(const AsanaWorkspaceRecord& workspace) {
    return compact(workspace.gid, "workspace", workspace.name);
}

JSONObject compact(const AsanaProjectRecord& project) {
    return compact(project.gid, "project", project.name);
}

// Asana's dates have milliseconds.
std::string dateText(Date date) {
    return sandbox::dateText(date, 3);
}

JSONObject taskState(const AsanaTaskRecord& task) {
    JSONValue::Array files;
    for (const auto& attachment : task.attachments) {
        files.push_back(fileState(attachment.file));
    }
    return {{"id", task.gid},
            {"name", task.name},
            {"notes", task.notes},
            {"assignee", task.assignee ? JSONValue(task.assignee->name) : JSONValue()},
            {"date", controlDateText(task.date)},
            {"attachments", std::move(files)}};
}

using TasksByParent = std::map<std::string_view, JSONValue::Array>;

// By the identifiers of projects, those of no project by that of their workspace.
TasksByParent tasksByParent(const AsanaStore& store) {
    TasksByParent tasks;
    for (const auto& task : store.tasks()) {
        for (const auto* project : task.projects) {
            tasks[project->gid].push_back(taskState(task));
        }
        if (task.projects.empty()) {
            tasks[task.workspace->gid].push_back(taskState(task));
        }
    }
    return tasks;
}

} // namespace

JSONObject asanaUserJSON(const AsanaUserRecord& user, const AsanaStore& store) {
    JSONValue::Array workspaces;
    for (const auto& workspace : store.workspaces()) {
        if (workspace.findUser(user.gid)) {
            workspaces.push_back(compact(workspace));
        }
    }
    auto json = compact(user);
    json.set("email", user.email);
    json.set("photo", nullptr);
    json.set("workspaces", std::move(workspaces));
    return json;
}

JSONObject asanaWorkspaceJSON(const AsanaWorkspaceRecord& workspace) {
    auto json = compact(workspace);
    json.set("email_domains",
             workspace.isOrganization ? JSONValue::Array{"sandbox.example"} : JSONValue::Array());
    json.set("is_organization", workspace.isOrganization);
    return json;
}

JSONObject asanaProjectJSON(const AsanaProjectRecord& project, const AsanaWorkspaceRecord& workspace) {
    auto json = compact(project);
    json.set("archived", project.isArchived);
    json.set("public", project.isPublic);
    json.set("color", "light-green");
    json.set("notes", "");
    json.set("owner", compact(workspace.users.front()));
    json.set("permalink_url", "https://app.asana.com/0/" + project.gid + "/" + project.gid);
    json.set("workspace", compact(workspace));
    return json;
}

JSONObject asanaTaskJSON(const AsanaTaskRecord& task) {
    JSONValue::Array projects;
    for (const auto* project : task.projects) {
        projects.push_back(compact(*project));
    }
    auto json = compact(task.gid, "task", task.name);
    json.set("resource_subtype", "default_task");
    json.set("assignee", task.assignee ? JSONValue(compact(*task.assignee)) : JSONValue());
    json.set("completed", false);
    json.set("completed_at", nullptr);
    json.set("created_at", dateText(task.date));
    json.set("due_at", nullptr);
    json.set("due_on", nullptr);
    json.set("followers", JSONValue::Array{compact(task.workspace->users.front())});
    json.set("modified_at", dateText(task.attachments.empty() ? task.date : task.attachments.back().date));
    json.set("notes", task.notes);
    json.set("parent", nullptr);
    json.set("permalink_url", "https://app.asana.com/0/0/" + task.gid);
    json.set("projects", std::move(projects));
    json.set("tags", JSONValue::Array());
    json.set("workspace", compact(*task.workspace));
    return json;
}

JSONObject asanaAttachmentJSON(const AsanaAttachmentRecord& attachment, const AsanaTaskRecord& task) {
    const auto url = "https://app.asana.com/app/asana/-/get_asset?asset_id=" + attachment.gid;
    auto json = compact(attachment.gid, "attachment", attachment.file.name);
    json.set("resource_subtype", "asana");
    json.set("created_at", dateText(attachment.date));
    json.set("download_url", url);
    json.set("host", "asana");
    json.set("parent", compact(task.gid, "task", task.name));
    json.set("permanent_url", url);
    json.set("size", attachment.file.size);
    json.set("view_url", url);
    return json;
}

JSONObject asanaCompact(const JSONObject& whole) {
    return asanaWithFields(whole, "name");
}

JSONObject asanaWithFields(const JSONObject& whole, std::string_view optFields) {
    JSONObject chosen{{"gid", *whole.find("gid")}, {"resource_type", *whole.find("resource_type")}};
    while (!optFields.empty()) {
        const auto path = optFields.substr(0, optFields.find(','));
        const auto name = path.substr(0, path.find('.'));
        if (const auto* value = whole.find(name)) {
            chosen.set(name, *value);
        }
        optFields.remove_prefix(std::min(path.size() + 1, optFields.size()));
    }
    return chosen;
}

JSONObject asanaState(const AsanaStore& store) {
    auto tasks = tasksByParent(store);
    JSONValue::Array workspaces;
    for (const auto& workspace : store.workspaces()) {
        JSONValue::Array projects;
        for (const auto& project : workspace.projects) {
            projects.push_back(JSONObject{{"id", project.gid},
                                          {"name", project.name},
                                          {"public", project.isPublic},
                                          {"archived", project.isArchived},
                                          {"tasks", std::move(tasks[project.gid])}});
        }
        workspaces.push_back(JSONObject{{"id", workspace.gid},
                                        {"name", workspace.name},
                                        {"users", workspace.users.size()},
                                        {"projects", std::move(projects)},
                                        {"tasks", std::move(tasks[workspace.gid])}});
    }
    return {{"user", JSONObject{{"name", store.user().name}, {"email", store.user().email}}},
            {"workspaces", std::move(workspaces)}};
}

} // namespace zelto::sandbox
