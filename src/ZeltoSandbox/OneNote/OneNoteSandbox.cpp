#include <ZeltoSandbox/OneNote/OneNoteSandbox.h>

#include <ZeltoSandbox/BearerAccess.h>
#include <ZeltoSandbox/Graph/GraphAccess.h>
#include <ZeltoSandbox/OneNote/OneNoteForm.h>
#include <ZeltoSandbox/OneNote/OneNoteJSON.h>

#include <utility>

namespace zelto::sandbox {

namespace {

constexpr auto readUser = "User.Read";
constexpr auto createNotes = "Notes.Create";

} // namespace

const SandboxEndpoint<OneNoteSandbox> OneNoteSandbox::endpoints[] = {
    {"GET", "v1.0/me", &OneNoteSandbox::me, readUser},
    {"GET", "v1.0/me/onenote/notebooks", &OneNoteSandbox::notebooks, createNotes},
    {"GET", "v1.0/me/onenote/sections", &OneNoteSandbox::sections, createNotes},
    {"POST", "v1.0/me/onenote/sections/*/pages", &OneNoteSandbox::addPage, createNotes},
};

std::unique_ptr<SandboxService> OneNoteSandbox::make(SandboxContext& context, const SandboxServiceRow&) {
    return std::make_unique<OneNoteSandbox>(context);
}

OneNoteSandbox::OneNoteSandbox(SandboxContext& context)
    : context_(context), store_(std::make_unique<OneNoteStore>()) {}

SandboxResponse OneNoteSandbox::respond(const SandboxRequest& request) {
    const auto grant = bearerGrant(request, context_.tokens, "OneNote");
    if (!grant) {
        return failure(401).because(grant.error());
    }
    const auto* endpoint = endpointFor<OneNoteSandbox>(request, endpoints);
    if (!endpoint) {
        return graphRefusal(400, "BadRequest", "Resource not found for the path of this request.");
    }
    if (!graphCovers(**grant, endpoint->scope)) {
        return failure(403).because("the token does not have the scope " + std::string(endpoint->scope));
    }
    return (this->*endpoint->handler)(request);
}

SandboxResponse OneNoteSandbox::failure(int status) const {
    switch (status) {
    case 401:
        return graphRefusal(status, "InvalidAuthenticationToken",
                            "The access token is missing, invalid or expired.");
    case 403:
        return graphRefusal(status, "40004", "The request does not have the scopes that it needs.");
    case 404:
        return graphRefusal(status, "20102", "The specified resource does not exist.");
    case 429:
        return graphRefusal(status, "20166", "The application has made too many requests for this user.");
    case 503:
        return graphRefusal(status, "10002", "The service is not available now. Try again later.");
    case 507:
        return graphRefusal(status, "30102", "The section is full: it takes no more pages.");
    default:
        return graphRefusal(status, status >= 500 ? "10001" : "10017", std::string(reasonPhrase(status)));
    }
}

SandboxResponse OneNoteSandbox::me(const SandboxRequest&) {
    return SandboxResponse::json(oneNoteUserJSON(store_->user()));
}

SandboxResponse OneNoteSandbox::notebooks(const SandboxRequest&) {
    JSONValue::Array records;
    for (const auto& notebook : store_->notebooks()) {
        records.push_back(oneNoteNotebookJSON(notebook));
    }
    return graphList("users('me')/onenote/notebooks", std::move(records));
}

SandboxResponse OneNoteSandbox::sections(const SandboxRequest&) {
    JSONValue::Array records;
    for (const auto& notebook : store_->notebooks()) {
        for (const auto& section : notebook.sections) {
            records.push_back(oneNoteSectionJSON(section, notebook));
        }
    }
    return graphList("users('me')/onenote/sections", std::move(records));
}

SandboxResponse OneNoteSandbox::addPage(const SandboxRequest& request) {
    auto* section = store_->findSection(request.segments[4]);
    if (!section) {
        return failure(404);
    }
    auto form = readOneNoteForm(request, context_.settings);
    if (!form) {
        return graphRefusal(form.error().status, form.error().code, form.error().message);
    }
    if (section->isFull || store_->pageCount() >= OneNoteStore::maximumPageCount) {
        return failure(507);
    }
    OneNotePageRecord page{.title = std::move(form->html.title),
                           .path = context_.files.addDocument(form->presentation->content, shownOneNoteHTML)};
    for (const auto& [part, name] : form->files) {
        page.files.push_back(storedFile(context_.files, *part, name, mediaTypeOfFile(*part, name)));
    }
    const auto json = oneNotePageJSON(store_->addPage(*section, std::move(page)));
    return SandboxResponse::json(json, 201).with("Location", *json.find("self")->asString());
}

JSONObject OneNoteSandbox::state() const {
    return oneNoteState(*store_);
}

void OneNoteSandbox::reset() {
    store_ = std::make_unique<OneNoteStore>();
}

} // namespace zelto::sandbox
