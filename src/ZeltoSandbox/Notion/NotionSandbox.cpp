#include <ZeltoSandbox/Notion/NotionSandbox.h>

#include <ZeltoSandbox/BearerAccess.h>
#include <ZeltoSandbox/JSONBody.h>
#include <ZeltoSandbox/Notion/NotionContent.h>
#include <ZeltoSandbox/Notion/NotionJSON.h>
#include <ZeltoSandbox/Notion/NotionSearch.h>

#include <algorithm>
#include <utility>

namespace zelto::sandbox {

namespace {

constexpr std::uint64_t maximumBody = 500'000; // bytes, of every request
constexpr std::string_view versionHeader = "Notion-Version";
constexpr std::string_view version = "2022-06-28";

std::optional<NotionError> versionProblem(const SandboxRequest& request) {
    const auto* value = request.head.field(versionHeader);
    if (!value) {
        return NotionError{400, "missing_version",
                           "Notion-Version header failed validation: Notion-Version header should be "
                           "defined, instead was `undefined`."};
    }
    return *value == version
               ? std::nullopt
               : std::optional(NotionError::validation(
                     "Notion-Version header failed validation: Notion-Version header should be `\"" +
                     std::string(version) + "\"`, instead was `\"" + *value + "\"`."));
}

NotionError bodyError(const BodyProblem& problem) {
    switch (problem.status) {
    case 413:
        return NotionError::validation("body failed validation: the request should be ≤ `" +
                                       std::to_string(maximumBody) + "` bytes.");
    case 415:
        return NotionError::invalidRequest("Unsupported request: " + problem.text + ".");
    default:
        return {400, "invalid_json", "Error parsing JSON body."};
    }
}

Result<JSONValue, SandboxResponse> bodyOf(const SandboxRequest& request) {
    auto body = jsonObject(request, maximumBody);
    if (!body) {
        return failure(bodyError(body.error()).response().because(body.error().text));
    }
    return *std::move(body);
}

// The page's array that belongs to the property, which goes by its name or its identifier; null for none.
JSONValue::Array* arrayFor(NotionPageRecord& page, const NotionDatabaseRecord& database,
                           std::string_view key) {
    if (key == "title" || key == database.titleProperty) {
        return &page.title;
    }
    return key == database.textProperty ? &page.text : nullptr;
}

void readProperty(NotionContent& content, NotionCheck& check, const NotionField& field,
                  JSONValue::Array& value, std::string_view type) {
    if (!field.value()->asObject()) {
        check.failAt(field, "an object");
    } else if (!field.member(type).exists()) {
        check.fail(field.path().substr(field.path().rfind('.') + 1) + " is expected to be " +
                   std::string(type) + ".");
    } else if (check.object(field, {"id", "type", type})) {
        check.oneOf(field.member("type"), {type}, type);
        value = content.richText(field.member(type));
    }
}

void readProperties(NotionPageRecord& page, const NotionDatabaseRecord& database, NotionContent& content,
                    NotionCheck& check, const NotionField& field) {
    const auto* properties = field.exists() ? field.value()->asObject() : nullptr;
    if (!properties) {
        check.failAt(field, field.exists() ? "an object" : "defined");
        return;
    }
    for (const auto& [key, value] : *properties) {
        auto* array = arrayFor(page, database, key);
        if (!array) {
            check.fail(key + " is not a property that exists.");
            return;
        }
        readProperty(content, check, field.member(key), *array, array == &page.title ? "title" : "rich_text");
    }
}

// Of two objects with the times of their last edits; those of one time by their identifiers.
bool isInFront(const std::pair<Date, JSONObject>& left, const std::pair<Date, JSONObject>& right) {
    return left.first != right.first
               ? left.first > right.first
               : *left.second.find("id")->asString() < *right.second.find("id")->asString();
}

} // namespace

const SandboxEndpoint<NotionSandbox> NotionSandbox::endpoints[] = {
    {"GET", "v1/users/me", &NotionSandbox::me},
    {"POST", "v1/search", &NotionSandbox::search},
    {"POST", "v1/pages", &NotionSandbox::addPage},
};

std::unique_ptr<SandboxService> NotionSandbox::make(SandboxContext& context, const SandboxServiceRow&) {
    return std::make_unique<NotionSandbox>(context);
}

NotionSandbox::NotionSandbox(SandboxContext& context)
    : context_(context), store_(std::make_unique<NotionStore>()) {}

SandboxResponse NotionSandbox::respond(const SandboxRequest& request) {
    const auto* endpoint = endpointFor<NotionSandbox>(request, endpoints);
    if (!endpoint) {
        return NotionError{400, "invalid_request_url", "Invalid request URL."}.response().because(
            "the sandbox does not have it");
    }
    if (const auto grant = bearerGrant(request, context_.tokens, "Notion"); !grant) {
        return failure(401).because(grant.error());
    }
    if (const auto problem = versionProblem(request)) {
        return problem->response();
    }
    return (this->*endpoint->handler)(request);
}

SandboxResponse NotionSandbox::failure(int status) const {
    return NotionError::ofStatus(status).response();
}

SandboxResponse NotionSandbox::me(const SandboxRequest&) {
    return SandboxResponse::json(notionBotJSON());
}

SandboxResponse NotionSandbox::search(const SandboxRequest& request) {
    const auto body = bodyOf(request);
    if (!body) {
        return body.error();
    }
    NotionCheck check;
    const auto search = NotionSearch::read(check, *body);
    auto list = search.list(check, objects());
    return check.problem() ? check.problem()->response() : SandboxResponse::json(std::move(list));
}

SandboxResponse NotionSandbox::addPage(const SandboxRequest& request) {
    const auto body = bodyOf(request);
    if (!body) {
        return body.error();
    }
    NotionCheck check;
    const NotionField root(*body);
    check.object(root, {"parent", "properties", "children"});
    const auto* database = parentOf(check, root.member("parent"));
    if (!database) {
        return check.problem()->response();
    }
    NotionPageRecord page;
    page.databaseID = database->id;
    NotionContent content(check);
    readProperties(page, *database, content, check, root.member("properties"));
    if (const auto children = root.member("children"); children.exists()) {
        page.blocks = content.blocks(children);
    }
    if (content.blockCount() > NotionContent::maximumBlocks) {
        check.fail("body failed validation: the request should have ≤ `1000` blocks, instead has `" +
                   std::to_string(content.blockCount()) + "`.");
    }
    if (check.problem()) {
        return check.problem()->response();
    }
    const auto size = request.body->size();
    if (!store_->hasSpace(size)) {
        return failure(403).because("there are as many pages as the sandbox keeps; reset it");
    }
    return SandboxResponse::json(notionPageJSON(store_->addPage(std::move(page), size), database));
}

const NotionDatabaseRecord* NotionSandbox::parentOf(NotionCheck& check, const NotionField& parent) const {
    check.object(parent, {"type", "database_id"});
    check.oneOf(parent.member("type"), {"database_id"}, "database_id");
    const auto id = check.identifier(parent.member("database_id"));
    if (check.problem()) {
        return nullptr;
    }
    const auto* found = store_->findShared(id, context_.settings.additionalTargets);
    if (!found) {
        check.fail(NotionError::databaseNotFound(id));
    }
    return found;
}

const std::vector<NotionDatabaseRecord>& NotionSandbox::databases() const {
    return store_->databases(context_.settings.additionalTargets);
}

std::vector<JSONObject> NotionSandbox::objects() const {
    std::vector<std::pair<Date, JSONObject>> all;
    for (const auto& database : databases()) {
        if (database.isShared) {
            all.emplace_back(database.edited, notionDatabaseJSON(database));
        }
    }
    for (const auto& page : store_->pages()) {
        const auto* database = page.databaseID
                                   ? store_->findShared(*page.databaseID, context_.settings.additionalTargets)
                                   : nullptr;
        if (database || !page.databaseID) {
            all.emplace_back(page.date, notionPageJSON(page, database));
        }
    }
    std::ranges::sort(all, isInFront);
    std::vector<JSONObject> objects;
    for (auto& [date, object] : all) {
        objects.push_back(std::move(object));
    }
    return objects;
}

JSONObject NotionSandbox::state() const {
    return notionState(databases(), store_->pages());
}

void NotionSandbox::reset() {
    store_ = std::make_unique<NotionStore>();
}

} // namespace zelto::sandbox
