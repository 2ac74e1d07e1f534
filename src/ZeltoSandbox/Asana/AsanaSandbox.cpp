#include <ZeltoSandbox/Asana/AsanaSandbox.h>

#include <ZeltoSandbox/Asana/AsanaJSON.h>
#include <ZeltoSandbox/BearerAccess.h>

#include <Platform/Crypto/RandomBytes.h>
#include <Platform/PercentEncoding.h>

#include <algorithm>
#include <set>

namespace zelto::sandbox {

namespace {

constexpr std::uint64_t attachmentLimit = std::uint64_t{100} << 20;
constexpr std::size_t maximumPage = 100;
constexpr std::size_t maximumUnpagedCount = 1000;
constexpr TimeInterval offsetLifetime{15 * 60};
constexpr std::size_t maximumOffsetCount = 10'000;
constexpr std::string_view apiRoot = "/api/1.0";
constexpr const char* retryAfter = "30"; // seconds

std::string newOffset() {
    return randomToken(24);
}

SandboxResponse refused(int status, std::string message) {
    return SandboxResponse::json(JSONObject{{"errors", JSONValue::Array{JSONObject{{"message", message}}}}},
                                 status)
        .because(std::move(message));
}

SandboxResponse oneRecord(JSONObject record, int status = 200) {
    return SandboxResponse::json(JSONObject{{"data", std::move(record)}}, status);
}

// A single record is whole where a list has compact ones.
JSONObject chosenFields(const SandboxRequest& request, const JSONObject& whole) {
    const auto fields = request.queryValue("opt_fields");
    return fields ? asanaWithFields(whole, *fields) : whole;
}

// What is wrong with an identifier; `name` is that of the parameter or of the resource.
std::optional<std::string> gidProblem(std::string_view name, std::string_view gid, bool isKnown) {
    if (!isAsanaGID(gid)) {
        return std::string(name) + ": Not a recognized ID: " + std::string(gid);
    }
    return isKnown ? std::nullopt
                   : std::optional(std::string(name) + ": Unknown object: " + std::string(gid));
}

SandboxResponse gidRefusal(std::string problem) {
    const bool isUnknown = problem.find(": Unknown object: ") != std::string::npos;
    return refused(isUnknown ? 404 : 400, std::move(problem));
}

// The target of a list's next page, below the root of the API.
std::string nextPath(const SandboxRequest& request, const std::string& offset) {
    auto path = request.path.substr(apiRoot.size());
    char separator = '?';
    for (const auto& item : request.query) {
        if (item.name != "offset") {
            path += separator + percentEncodeBytes(item.name, AllowedCharacters::queryItem) + '=' +
                    percentEncodeBytes(item.value.value_or(""), AllowedCharacters::queryItem);
            separator = '&';
        }
    }
    return path + separator + "offset=" + offset;
}

// The items of a list that commas separate.
std::vector<std::string> listed(std::string_view text) {
    std::vector<std::string> items;
    while (!text.empty()) {
        items.emplace_back(text.substr(0, text.find(',')));
        text.remove_prefix(std::min(items.back().size() + 1, text.size()));
    }
    return items;
}

constexpr std::string_view taskFields[] = {"assignee", "name", "notes", "projects", "workspace"};

// What is wrong with the form as such; nullopt for a good one.
std::optional<std::string> formProblem(const SandboxRequest& request) {
    if (request.contentType != "application/x-www-form-urlencoded") {
        return "Unsupported Content-Type: " + request.contentType;
    }
    std::set<std::string_view> seen;
    for (const auto& item : request.form) {
        if (std::ranges::find(taskFields, item.name) == std::end(taskFields)) {
            return item.name + ": Cannot write this property";
        }
        if (!seen.insert(item.name).second) {
            return item.name + ": Given more than once";
        }
    }
    return std::nullopt;
}

SandboxResponse uploadRefusal(UploadProblem problem) {
    switch (problem) {
    case UploadProblem::missing:
        return refused(400, "file: Missing input");
    case UploadProblem::several:
        return refused(400, "file: Given more than once");
    case UploadProblem::unnamed:
        return refused(400, "file: Missing file name");
    case UploadProblem::tooLarge:
        break;
    }
    return refused(413, "file: Larger than 100 MB");
}

} // namespace

const SandboxEndpoint<AsanaSandbox> AsanaSandbox::endpoints[] = {
    {"GET", "api/1.0/users/me", &AsanaSandbox::me, "users:read"},
    {"GET", "api/1.0/workspaces", &AsanaSandbox::workspaces, "workspaces:read"},
    {"GET", "api/1.0/workspaces/*/users", &AsanaSandbox::workspaceUsers, "users:read"},
    {"GET", "api/1.0/workspaces/*/projects", &AsanaSandbox::workspaceProjects, "projects:read"},
    {"GET", "api/1.0/tasks/*", &AsanaSandbox::task, "tasks:read"},
    {"POST", "api/1.0/tasks", &AsanaSandbox::addTask, "tasks:write"},
    {"GET", "api/1.0/tasks/*/attachments", &AsanaSandbox::taskAttachments, "attachments:read"},
    {"POST", "api/1.0/tasks/*/attachments", &AsanaSandbox::addAttachment, "attachments:write"},
};

std::unique_ptr<SandboxService> AsanaSandbox::make(SandboxContext& context, const SandboxServiceRow&) {
    return std::make_unique<AsanaSandbox>(context);
}

AsanaSandbox::AsanaSandbox(SandboxContext& context)
    : context_(context), store_(std::make_unique<AsanaStore>()), nextPages_(maximumOffsetCount, newOffset) {}

SandboxResponse AsanaSandbox::respond(const SandboxRequest& request) {
    const auto* endpoint = endpointFor<AsanaSandbox>(request, endpoints);
    if (auto refusal = accessRefusal(request, endpoint ? endpoint->scope : std::string_view())) {
        return *std::move(refusal);
    }
    return endpoint ? (this->*endpoint->handler)(request) : refused(404, "No matching route for request");
}

std::optional<SandboxResponse> AsanaSandbox::accessRefusal(const SandboxRequest& request,
                                                           std::string_view scope) {
    const auto grant = bearerGrant(request, context_.tokens, "Asana");
    if (!grant) {
        return failure(401).because(grant.error());
    }
    // "default" is what an app has that is registered for all of the API.
    if (!scope.empty() && !coversScope(**grant, scope) && !hasScope((*grant)->scope, "default")) {
        return failure(403).because("the token does not have the scope " + std::string(scope));
    }
    if (!request.bodyProblem.empty()) {
        return refused(400, "Could not parse request data, " + request.bodyProblem);
    }
    return std::nullopt;
}

SandboxResponse AsanaSandbox::failure(int status) const {
    if (status == 401) {
        return refused(status, "Not Authorized");
    }
    if (status == 429) {
        return refused(status, "You've made too many requests and hit a rate limit. Please retry after the "
                               "given amount of time.")
            .with("Retry-After", retryAfter);
    }
    return refused(status, status >= 500 ? "Server Error" : std::string(reasonPhrase(status)));
}

SandboxResponse AsanaSandbox::me(const SandboxRequest& request) {
    return oneRecord(chosenFields(request, asanaUserJSON(store_->user(), *store_)));
}

SandboxResponse AsanaSandbox::workspaces(const SandboxRequest& request) {
    std::vector<JSONObject> records;
    std::ranges::transform(store_->workspaces(), std::back_inserter(records), asanaWorkspaceJSON);
    return list(request, records);
}

SandboxResponse AsanaSandbox::workspaceUsers(const SandboxRequest& request) {
    const auto workspace = workspaceAt(request);
    if (!workspace) {
        return workspace.error();
    }
    std::vector<JSONObject> records;
    for (const auto& user : (*workspace)->users) {
        records.push_back(asanaUserJSON(user, *store_));
    }
    return list(request, records);
}

SandboxResponse AsanaSandbox::workspaceProjects(const SandboxRequest& request) {
    const auto workspace = workspaceAt(request);
    if (!workspace) {
        return workspace.error();
    }
    const auto archived = request.queryValue("archived");
    if (archived && *archived != "true" && *archived != "false") {
        return refused(400, "archived: Not a boolean: " + *archived);
    }
    std::vector<JSONObject> records;
    for (const auto& project : (*workspace)->projects) {
        if (!archived || project.isArchived == (*archived == "true")) {
            records.push_back(asanaProjectJSON(project, **workspace));
        }
    }
    return list(request, records);
}

SandboxResponse AsanaSandbox::task(const SandboxRequest& request) {
    const auto found = taskAt(request);
    return found ? oneRecord(chosenFields(request, asanaTaskJSON(**found))) : found.error();
}

SandboxResponse AsanaSandbox::addTask(const SandboxRequest& request) {
    if (auto problem = formProblem(request)) {
        return refused(400, std::move(*problem));
    }
    auto task = taskOf(request);
    if (!task) {
        return refused(400, task.error());
    }
    if (store_->tasks().size() >= AsanaStore::maximumTaskCount) {
        return refused(403, "There are as many tasks as the sandbox keeps; reset it.");
    }
    const auto& added = store_->addTask(std::move(*task));
    return oneRecord(chosenFields(request, asanaTaskJSON(added)), 201)
        .with("Location", "https://app.asana.com/api/1.0/tasks/" + added.gid);
}

SandboxResponse AsanaSandbox::taskAttachments(const SandboxRequest& request) {
    const auto found = taskAt(request);
    if (!found) {
        return found.error();
    }
    std::vector<JSONObject> records;
    for (const auto& attachment : (*found)->attachments) {
        records.push_back(asanaAttachmentJSON(attachment, **found));
    }
    return list(request, records);
}

SandboxResponse AsanaSandbox::addAttachment(const SandboxRequest& request) {
    const auto found = taskAt(request);
    if (!found) {
        return found.error();
    }
    const auto part = filePart(request, "file", context_.settings.attachmentLimit.value_or(attachmentLimit));
    if (!part) {
        return uploadRefusal(part.error());
    }
    const auto name = *(*part)->fileName;
    const auto& added = store_->addAttachment(
        **found, storedFile(context_.files, **part, name, mediaTypeOfFile(**part, name)));
    return oneRecord(chosenFields(request, asanaAttachmentJSON(added, **found)));
}

Result<const AsanaWorkspaceRecord*, SandboxResponse>
AsanaSandbox::workspaceAt(const SandboxRequest& request) const {
    const auto& gid = request.segments[3];
    const auto* workspace = store_->findWorkspace(gid);
    if (auto problem = gidProblem("workspace", gid, workspace)) {
        return zelto::failure(gidRefusal(std::move(*problem)));
    }
    return workspace;
}

Result<AsanaTaskRecord*, SandboxResponse> AsanaSandbox::taskAt(const SandboxRequest& request) {
    const auto& gid = request.segments[3];
    auto* found = store_->findTask(gid);
    if (auto problem = gidProblem("task", gid, found)) {
        return zelto::failure(gidRefusal(std::move(*problem)));
    }
    return found;
}

Result<AsanaTaskRecord, std::string> AsanaSandbox::taskOf(const SandboxRequest& request) const {
    const auto projects = listed(request.formValue("projects").value_or(""));
    const auto workspace = workspaceOf(request, projects);
    if (!workspace) {
        return zelto::failure(workspace.error());
    }
    AsanaTaskRecord task;
    task.workspace = *workspace;
    for (const auto& gid : projects) {
        const auto* project = task.workspace->findProject(gid);
        if (!project) {
            return zelto::failure("projects: [" + std::to_string(task.projects.size()) +
                                  "]: Not in the task's workspace: " + gid);
        }
        task.projects.push_back(project);
    }
    const auto assignee = request.formValue("assignee").value_or("");
    task.assignee = task.workspace->findUser(assignee);
    if (!assignee.empty() && !task.assignee) {
        return zelto::failure(task.workspace->isOrganization
                                  ? "assignee: Not a user in Organization: " + assignee
                                  : "assignee: Not a user in Workspace: " + task.workspace->gid);
    }
    task.name = request.formValue("name").value_or("");
    task.notes = request.formValue("notes").value_or("");
    return task;
}

Result<const AsanaWorkspaceRecord*, std::string>
AsanaSandbox::workspaceOf(const SandboxRequest& request, const std::vector<std::string>& projects) const {
    const auto gid = request.formValue("workspace").value_or("");
    if (gid.empty() && projects.empty()) {
        return zelto::failure(std::string("You should specify one of workspace, parent, projects"));
    }
    const auto* named = store_->findWorkspace(gid);
    if (auto problem = gidProblem("workspace", gid, named); problem && !gid.empty()) {
        return zelto::failure(*std::move(problem));
    }
    for (std::size_t i = 0; i < projects.size(); ++i) {
        const auto name = "projects: [" + std::to_string(i) + "]";
        if (auto problem = gidProblem(name, projects[i], store_->findWorkspaceOfProject(projects[i]))) {
            return zelto::failure(*std::move(problem));
        }
    }
    return named ? named : store_->findWorkspaceOfProject(projects.front());
}

Result<std::size_t, std::string> AsanaSandbox::positionOf(const SandboxRequest& request) {
    const auto offset = request.queryValue("offset");
    if (!offset) {
        return std::size_t{0};
    }
    const auto* page = nextPages_.findEvenExpired(*offset);
    if (!page || page->path != request.path) {
        return zelto::failure(std::string("offset: Your pagination token is invalid."));
    }
    if (!nextPages_.find(*offset)) {
        return zelto::failure(std::string("offset: Your pagination token has expired."));
    }
    return page->position;
}

SandboxResponse AsanaSandbox::list(const SandboxRequest& request, const std::vector<JSONObject>& records) {
    const auto limitText = request.queryValue("limit");
    const auto limit = limitText ? pageLimit(*limitText, 1, maximumPage) : maximumUnpagedCount;
    if (!limit) {
        return refused(400, "limit: Must be between 1 and 100");
    }
    const auto position = positionOf(request);
    if (!position) {
        return refused(400, position.error());
    }
    const auto begin = std::min(*position, records.size());
    const auto end = std::min(records.size(), begin + *limit);
    if (!limitText && end < records.size()) {
        return refused(400, "The result is too large. You should use pagination (may require specifying a "
                            "workspace)!");
    }
    JSONValue::Array data;
    const auto fields = request.queryValue("opt_fields");
    for (auto i = begin; i < end; ++i) {
        data.push_back(fields ? asanaWithFields(records[i], *fields) : asanaCompact(records[i]));
    }
    JSONObject body{{"data", std::move(data)}};
    if (limitText) {
        body.set("next_page", end < records.size() ? nextPage(request, end) : JSONValue());
    }
    return SandboxResponse::json(std::move(body));
}

JSONValue AsanaSandbox::nextPage(const SandboxRequest& request, std::size_t position) {
    const auto offset = nextPages_.add({request.path, position}, offsetLifetime);
    const auto path = nextPath(request, offset);
    return JSONObject{
        {"offset", offset}, {"path", path}, {"uri", "https://app.asana.com" + std::string(apiRoot) + path}};
}

JSONObject AsanaSandbox::state() const {
    return asanaState(*store_);
}

void AsanaSandbox::reset() {
    store_ = std::make_unique<AsanaStore>();
    nextPages_.clear();
}

} // namespace zelto::sandbox
