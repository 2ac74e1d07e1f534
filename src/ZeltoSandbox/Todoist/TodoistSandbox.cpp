#include <ZeltoSandbox/Todoist/TodoistSandbox.h>

#include <ZeltoSandbox/BearerAccess.h>
#include <ZeltoSandbox/JSONBody.h>
#include <ZeltoSandbox/UploadedFile.h>

#include <Platform/Crypto/RandomBytes.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20;
constexpr std::uint64_t maximumBody = mebibyte;
constexpr std::uint64_t freeUpload = 5 * mebibyte;
constexpr std::uint64_t paidUpload = 100 * mebibyte;
constexpr std::size_t maximumSyncTokenCount = 10'000;
constexpr std::string_view readScope = "data:read";
constexpr std::string_view writeScope = "data:read_write";
constexpr std::string_view resourceNames[] = {"all", "projects", "items", "notes", "user"};

SandboxResponse refused(const TodoistError& error) {
    auto response = SandboxResponse::json(error.json(), error.status);
    if (const auto* seconds = error.extra.find("retry_after")) {
        response.fields.push_back({"Retry-After", seconds->text().value_or("")});
    }
    return std::move(response).because(error.summary());
}

std::string newSyncToken() {
    return randomToken(30);
}

// The values of the form are JSON, but for the sync token.
Result<JSONValue, TodoistError> formBody(const SandboxRequest& request) {
    JSONObject body;
    for (const auto& item : request.form) {
        const auto text = item.value.value_or("");
        auto value = item.name == "sync_token" ? JSONValue(text) : JSONValue::parse(text);
        if (!value) {
            return failure(TodoistError::invalidArgument(item.name, "is not JSON"));
        }
        body.set(item.name, *std::move(value));
    }
    return body;
}

Result<JSONValue, TodoistError> bodyOf(const SandboxRequest& request) {
    if (request.contentType == "application/x-www-form-urlencoded") {
        return request.bodyProblem.empty() ? formBody(request) : failure(TodoistError::ofStatus(400));
    }
    auto body = jsonObject(request, maximumBody);
    if (!body) {
        auto error = TodoistError::ofStatus(body.error().status);
        error.extra.set("explanation", body.error().text);
        return failure(std::move(error));
    }
    return *std::move(body);
}

std::optional<TodoistError> resourceProblem(const JSONValue& types) {
    if (!types.asArray()) {
        return TodoistError::invalidArgument("resource_types", "is not an array");
    }
    for (const auto& each : *types.asArray()) {
        const auto* name = each.asString();
        if (!name || std::ranges::find(resourceNames, *name) == std::end(resourceNames)) {
            return TodoistError::invalidArgument(
                "resource_types", "has a name that is unknown, or nothing that the sandbox has");
        }
    }
    return std::nullopt;
}

bool asksFor(const JSONValue& types, std::string_view name) {
    return std::ranges::any_of(*types.asArray(), [&](const JSONValue& each) {
        return *each.asString() == name || *each.asString() == "all";
    });
}

TodoistError uploadError(UploadProblem problem) {
    switch (problem) {
    case UploadProblem::missing:
        return TodoistError::missingArgument("file");
    case UploadProblem::several:
        return TodoistError::invalidArgument("file", "stands more than once");
    case UploadProblem::unnamed:
        return TodoistError::invalidArgument("file", "has no file name");
    case UploadProblem::tooLarge:
        break;
    }
    return TodoistError::ofStatus(413);
}

} // namespace

const SandboxEndpoint<TodoistSandbox> TodoistSandbox::endpoints[] = {
    {"POST", "api/v1/sync", &TodoistSandbox::sync, readScope},
    {"POST", "api/v1/uploads", &TodoistSandbox::upload, writeScope},
};

std::unique_ptr<SandboxService> TodoistSandbox::make(SandboxContext& context, const SandboxServiceRow&) {
    return std::make_unique<TodoistSandbox>(context);
}

TodoistSandbox::TodoistSandbox(SandboxContext& context)
    : context_(context), account_(std::make_unique<Account>()),
      syncTokens_(maximumSyncTokenCount, newSyncToken) {}

SandboxResponse TodoistSandbox::respond(const SandboxRequest& request) {
    const auto grant = bearerGrant(request, context_.tokens, "Todoist");
    if (!grant) {
        return failure(401).because(grant.error());
    }
    const auto* endpoint = endpointFor<TodoistSandbox>(request, endpoints);
    if (!endpoint) {
        return failure(404).because("the sandbox does not have it");
    }
    if (!coversScope(**grant, endpoint->scope) && !coversScope(**grant, writeScope)) {
        return failure(403).because("the token does not have the scope " + std::string(endpoint->scope));
    }
    return (this->*endpoint->handler)(request);
}

SandboxResponse TodoistSandbox::failure(int status) const {
    return refused(TodoistError::ofStatus(status));
}

bool TodoistSandbox::mayWrite(const SandboxRequest& request) {
    const auto grant = bearerGrant(request, context_.tokens, "Todoist");
    return grant && coversScope(**grant, writeScope);
}

SandboxResponse TodoistSandbox::sync(const SandboxRequest& request) {
    const auto body = bodyOf(request);
    if (!body) {
        return refused(body.error());
    }
    if (const auto problem = bodyProblem(*body)) {
        return refused(*problem);
    }
    JSONObject response;
    TodoistOutcome outcome;
    if (const auto* json = body->find("commands")) {
        if (!mayWrite(request)) {
            return failure(403).because("the token does not have the scope " + std::string(writeScope));
        }
        const auto commands = TodoistCommands::read(*json);
        if (!commands) {
            return refused(commands.error());
        }
        outcome = account_->commands.execute(*commands);
        response.set("sync_status", std::move(outcome.statuses));
    }
    response.set("temp_id_mapping", std::move(outcome.mapping));
    addResources(response, *body);
    return SandboxResponse::json(std::move(response)).because(std::move(outcome.problem));
}

std::optional<TodoistError> TodoistSandbox::bodyProblem(const JSONValue& body) {
    const auto* types = body.find("resource_types");
    if (!types && !body.find("commands")) {
        return TodoistError::missingArgument("resource_types");
    }
    if (auto problem = types ? resourceProblem(*types) : std::nullopt) {
        return problem;
    }
    return knownRevision(body) ? std::nullopt
                               : std::optional(TodoistError::invalidArgument("sync_token", "is unknown"));
}

std::optional<std::uint64_t> TodoistSandbox::knownRevision(const JSONValue& body) {
    const auto* member = body.find("sync_token");
    if (!member) {
        return 0;
    }
    const auto* token = member->asString();
    if (token && *token == "*") {
        return 0;
    }
    const auto* revision = token ? syncTokens_.find(*token) : nullptr;
    return revision ? std::optional(*revision) : std::nullopt;
}

void TodoistSandbox::addResources(JSONObject& response, const JSONValue& body) {
    const auto* token = textMember(body, "sync_token");
    const bool isFull = !token || *token == "*";
    const auto after = *knownRevision(body);
    const auto& store = account_->store;
    response.set("full_sync", isFull);
    response.set("sync_token", syncTokens_.add(store.revision(), std::nullopt));
    const auto* types = body.find("resource_types");
    if (!types) {
        return;
    }
    // Projects and the user are as they were at the first synchronisation.
    if (asksFor(*types, "projects")) {
        response.set("projects", isFull ? todoistProjectsJSON(store) : JSONValue::Array());
    }
    if (asksFor(*types, "user") && isFull) {
        response.set("user", todoistUserJSON(store, context_.settings.paidPlan));
    }
    if (asksFor(*types, "items")) {
        response.set("items", todoistItemsJSON(store, after));
    }
    if (asksFor(*types, "notes")) {
        response.set("notes", todoistNotesJSON(store, after));
    }
}

SandboxResponse TodoistSandbox::upload(const SandboxRequest& request) {
    if (!request.bodyProblem.empty()) {
        return refused(TodoistError::invalidArgument("file", request.bodyProblem));
    }
    const auto limit = context_.settings.paidPlan ? paidUpload : freeUpload;
    const auto part = filePart(request, "file", context_.settings.attachmentLimit.value_or(limit));
    if (!part) {
        return refused(uploadError(part.error()));
    }
    const auto name = request.parameter("file_name").value_or("");
    if (name.empty()) {
        return refused(TodoistError::missingArgument("file_name"));
    }
    return SandboxResponse::json(
        account_->store.addUpload(storedFile(context_.files, **part, name, mediaTypeOfFile(**part, name))));
}

JSONObject TodoistSandbox::state() const {
    return todoistState(account_->store, context_.settings.paidPlan);
}

void TodoistSandbox::reset() {
    account_ = std::make_unique<Account>();
    syncTokens_.clear();
}

} // namespace zelto::sandbox
