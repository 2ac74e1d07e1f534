#include <ZeltoSandbox/GoogleDrive/GoogleDriveSandbox.h>

#include <ZeltoSandbox/BearerAccess.h>
#include <ZeltoSandbox/Drives/DemoFiles.h>
#include <ZeltoSandbox/Drives/DriveState.h>
#include <ZeltoSandbox/GoogleDrive/FieldMask.h>
#include <ZeltoSandbox/GoogleDrive/GoogleDriveJSON.h>
#include <ZeltoSandbox/GoogleDrive/GoogleDriveOrder.h>
#include <ZeltoSandbox/GoogleDrive/GoogleDriveQuery.h>

#include <Platform/Crypto/RandomBytes.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

constexpr std::string_view scopeRoot = "https://www.googleapis.com/auth/";
// Any of an endpoint's scopes is enough.
constexpr std::string_view readScopes = "drive drive.readonly drive.file";
constexpr std::string_view writeScopes = "drive drive.file";
constexpr std::string_view rootAlias = "root";
constexpr std::string_view googleTypes = "application/vnd.google-apps.";
constexpr std::size_t usualPage = 100;
constexpr std::size_t maximumPage = 1000;
constexpr std::size_t maximumPageCount = 10'000;
constexpr std::uint64_t publishedUpload = 5'000'000; // of a file that goes by one request

std::string padded(std::string text, std::size_t length, std::uint64_t number) {
    const auto digits = std::to_string(number);
    return text.append(length - text.size() - digits.size(), '0') + digits;
}

std::string entryID(std::uint64_t number) {
    return number == 0 ? "0AZeltoDriveRootPVA" : padded("1ZeltoDrive", 33, number);
}

std::string revisionID(std::uint64_t number) {
    return padded("0BZeltoRevision", 51, number);
}

std::string newPageToken() {
    return randomToken(48);
}

// Twins, a document of Google's own, a file and a folder in the trash, and a name that has to be escaped in a
// query.
std::unique_ptr<Drive> newDrive() {
    auto drive = std::make_unique<Drive>(Drive::Names{entryID, revisionID});
    auto& projects = addDemoFiles(*drive);
    const auto text = [&](const DriveEntry& folder, std::string name, std::string content) -> DriveEntry& {
        return drive->addFile(folder, std::move(name), "text/plain", demoContent(std::move(content)),
                              demoDate);
    };
    text(projects, "Report.txt", "The report of spring.\n");
    text(projects, "Report.txt", "The report of autumn.\n");
    text(projects, "Robin's \\ notes.txt", "A quote and a backslash.\n");
    drive->addDocument(projects, "Minutes", std::string(googleTypes) + "document", demoDate);
    auto& trashed = drive->addFolder(drive->root(), "Drafts of last year", demoDate);
    trashed.isTrashed = true;
    text(trashed, "Draft.txt", "Nobody needs this any more.\n");
    return drive;
}

bool hasAnyScope(const TokenGrant& grant, std::string_view scopes) {
    for (auto rest = scopes; !rest.empty();) {
        const auto scope = rest.substr(0, rest.find(' '));
        if (coversScope(grant, std::string(scopeRoot).append(scope))) {
            return true;
        }
        rest.remove_prefix(std::min(scope.size() + 1, rest.size()));
    }
    return false;
}

GoogleError missingScope() {
    return {.status = 403,
            .reason = "insufficientPermissions",
            .message = "Request had insufficient authentication scopes."};
}

// What "fields" names, or what comes without it.
Result<FieldMask, GoogleError> fieldsOf(const SandboxRequest& request, const JSONValue& schema,
                                        std::string_view usual) {
    const auto given = request.queryValue("fields");
    auto mask = FieldMask::parse(given ? std::string_view(*given) : usual, schema);
    if (!mask) {
        return failure(GoogleError{
            .status = 400, .reason = "invalidParameter", .message = mask.error(), .location = "fields"});
    }
    return *std::move(mask);
}

SandboxResponse withFields(const SandboxRequest& request, const JSONValue& whole, const JSONValue& schema,
                           std::string_view usual) {
    const auto mask = fieldsOf(request, schema, usual);
    if (!mask) {
        return mask.error().response();
    }
    return SandboxResponse::json(mask->applied(whole));
}

SandboxResponse oneFile(const SandboxRequest& request, const DriveEntry& entry) {
    return withFields(request, googleFileJSON(entry), googleFileSchema(), googleFileDefault);
}

} // namespace

const SandboxEndpoint<GoogleDriveSandbox> GoogleDriveSandbox::endpoints[] = {
    {"GET", "drive/v3/about", &GoogleDriveSandbox::about, readScopes},
    {"GET", "drive/v3/files", &GoogleDriveSandbox::list, readScopes},
    {"GET", "drive/v3/files/*", &GoogleDriveSandbox::file, readScopes},
    {"POST", "upload/drive/v3/files", &GoogleDriveSandbox::create, writeScopes},
    {"PATCH", "upload/drive/v3/files/*", &GoogleDriveSandbox::update, writeScopes},
};

std::unique_ptr<SandboxService> GoogleDriveSandbox::make(SandboxContext& context, const SandboxServiceRow&) {
    return std::make_unique<GoogleDriveSandbox>(context);
}

GoogleDriveSandbox::GoogleDriveSandbox(SandboxContext& context)
    : context_(context), drive_(newDrive()), nextPages_(maximumPageCount, newPageToken) {}

SandboxResponse GoogleDriveSandbox::respond(const SandboxRequest& request) {
    drive().applySettings(context_.settings.drives);
    auto response = routed(request);
    drive().publish(context_.files);
    return response;
}

SandboxResponse GoogleDriveSandbox::routed(const SandboxRequest& request) {
    const auto grant = bearerGrant(request, context_.tokens, "GoogleDrive");
    if (!grant) {
        return failure(401).because(grant.error());
    }
    const auto* endpoint = endpointFor<GoogleDriveSandbox>(request, endpoints);
    if (!endpoint) {
        return failure(404).because("the sandbox does not have it");
    }
    if (!hasAnyScope(**grant, endpoint->scope)) {
        return missingScope().response();
    }
    return (this->*endpoint->handler)(request);
}

SandboxResponse GoogleDriveSandbox::failure(int status) const {
    return GoogleError::ofStatus(status).response();
}

SandboxResponse GoogleDriveSandbox::about(const SandboxRequest& request) {
    if (request.queryValue("fields").value_or("").empty()) {
        return GoogleError{.status = 400,
                           .reason = "required",
                           .message = "The 'fields' parameter is required for this method.",
                           .location = "fields"}
            .response();
    }
    return withFields(request, googleAboutJSON(drive(), context_.settings.drives), googleAboutSchema(), "*");
}

Result<GoogleDriveSandbox::NextPage, GoogleError> GoogleDriveSandbox::pageOf(const SandboxRequest& request) {
    NextPage page{.query = request.queryValue("q").value_or(""),
                  .orderBy = request.queryValue("orderBy").value_or("")};
    if (const auto token = request.queryValue("pageToken")) {
        const auto* known = nextPages_.find(*token);
        if (!known || known->query != page.query || known->orderBy != page.orderBy) {
            return zelto::failure(
                GoogleError::invalid("pageToken", "the page token is unknown, or of another query"));
        }
        page.position = known->position;
    }
    return page;
}

Result<std::vector<const DriveEntry*>, GoogleError> GoogleDriveSandbox::selected(const NextPage& page) {
    const auto query = page.query.empty() ? Result<GoogleDriveQuery, std::string>(GoogleDriveQuery())
                                          : GoogleDriveQuery::parse(page.query);
    if (!query) {
        return zelto::failure(GoogleError::invalid("q", query.error()));
    }
    for (const auto& parent : query->parents()) {
        if (parent != rootAlias && parent != drive().root().id && !drive().find(parent)) {
            return zelto::failure(GoogleError::notFound(parent));
        }
    }
    std::vector<const DriveEntry*> entries;
    for (const auto& [id, entry] : drive().entries()) {
        if (query->matches(entry)) {
            entries.push_back(&entry);
        }
    }
    if (!sortForGoogleDrive(entries, page.orderBy)) {
        return zelto::failure(GoogleError::invalid("orderBy", "orderBy has a key that is unknown"));
    }
    return entries;
}

SandboxResponse GoogleDriveSandbox::list(const SandboxRequest& request) {
    const auto sizeText = request.queryValue("pageSize");
    const auto size = sizeText ? pageLimit(*sizeText, 1, maximumPage) : usualPage;
    if (!size) {
        return GoogleError{.status = 400,
                           .reason = "invalidParameter",
                           .message = "Invalid value '" + *sizeText +
                                      "'. Values must be within the range: [1, 1000]",
                           .location = "pageSize"}
            .response();
    }
    auto page = pageOf(request);
    if (!page) {
        return page.error().response();
    }
    const auto entries = selected(*page);
    if (!entries) {
        return entries.error().response();
    }
    const auto begin = std::min(page->position, entries->size());
    const auto end = std::min(entries->size(), begin + *size);
    JSONValue::Array files;
    for (auto i = begin; i < end; ++i) {
        files.push_back(googleFileJSON(*(*entries)[i]));
    }
    auto json = googleListJSON(std::move(files));
    if (end < entries->size()) {
        page->position = end;
        json.set("nextPageToken", nextPages_.add(*std::move(page), std::nullopt));
    }
    return withFields(request, json, googleListSchema(),
                      "kind,incompleteSearch,nextPageToken,files(kind,id,name,mimeType)");
}

SandboxResponse GoogleDriveSandbox::file(const SandboxRequest& request) {
    const auto& id = request.segments[3];
    const auto* found = drive().find(id);
    if (!found) {
        return GoogleError::notFound(id).response();
    }
    const auto form = request.queryValue("alt").value_or("json");
    if (form == "json") {
        return oneFile(request, *found);
    }
    if (form != "media") {
        return GoogleError::invalid("alt", "alt is neither json nor media").response();
    }
    if (found->revisions.empty()) {
        return GoogleError{.status = 403,
                           .reason = "fileNotDownloadable",
                           .message = "Only files with binary content can be directly downloaded. Use Export "
                                      "with Docs Editors files.",
                           .location = "alt"}
            .response();
    }
    return {.fields = {{"Content-Type", found->mediaType}}, .file = found->revisions.back().content};
}

Result<GoogleDriveUpload, GoogleError> GoogleDriveSandbox::uploadOf(const SandboxRequest& request) {
    if (request.queryValue("uploadType").value_or("") != "multipart") {
        return zelto::failure(GoogleError{.status = 400,
                                          .reason = "badRequest",
                                          .message = "Of uploads the sandbox has uploadType=multipart alone.",
                                          .location = "uploadType"});
    }
    if (const auto mask = fieldsOf(request, googleFileSchema(), googleFileDefault); !mask) {
        return zelto::failure(mask.error());
    }
    auto upload = GoogleDriveUpload::read(request, context_.space);
    if (!upload) {
        return upload;
    }
    if (upload->mimeType.value_or("").starts_with(googleTypes)) {
        return zelto::failure(
            GoogleError{.status = 400,
                        .reason = "badRequest",
                        .message = "The sandbox does not convert files to Google's own types."});
    }
    const auto& settings = context_.settings;
    const auto size = upload->content.size;
    if ((settings.attachmentLimit && size > *settings.attachmentLimit) ||
        (settings.publishedLimits && size > publishedUpload)) {
        return zelto::failure(GoogleError::ofStatus(413));
    }
    if (!drive().hasSpace(settings.drives, size)) {
        return zelto::failure(GoogleError{.status = 403,
                                          .reason = "storageQuotaExceeded",
                                          .message = "The user's Drive storage quota has been exceeded."});
    }
    if (drive().uploadCount() >= Drive::maximumUploadCount) {
        return zelto::failure(
            GoogleError{.status = 403,
                        .reason = "quotaExceeded",
                        .message = "There are as many uploads as the sandbox keeps; reset it."});
    }
    return upload;
}

Result<const DriveEntry*, GoogleError> GoogleDriveSandbox::parentOf(const GoogleDriveUpload& upload) {
    const auto id = upload.parent.value_or(std::string(rootAlias));
    if (id == rootAlias || id == drive().root().id) {
        return &drive().root();
    }
    const auto* parent = drive().find(id);
    if (!parent) {
        return zelto::failure(GoogleError::notFound(id));
    }
    if (!parent->isFolder()) {
        return zelto::failure(GoogleError{.status = 403,
                                          .reason = "parentNotAFolder",
                                          .message = "The specified parent is not a folder.",
                                          .location = "parents"});
    }
    return parent;
}

SandboxResponse GoogleDriveSandbox::create(const SandboxRequest& request) {
    auto upload = uploadOf(request);
    if (!upload) {
        return upload.error().response();
    }
    const auto parent = parentOf(*upload);
    if (!parent) {
        return parent.error().response();
    }
    const auto& file = drive().addFile(**parent, upload->name.value_or("Untitled"),
                                       upload->mimeType.value_or(upload->contentType),
                                       std::move(upload->content), Date::now());
    drive().noteUpload(file);
    return oneFile(request, file);
}

SandboxResponse GoogleDriveSandbox::update(const SandboxRequest& request) {
    const auto& id = request.segments[4];
    auto* file = drive().find(id);
    if (!file) {
        return GoogleError::notFound(id).response();
    }
    auto upload = uploadOf(request);
    if (!upload) {
        return upload.error().response();
    }
    if (upload->hasParents) {
        return GoogleError{.status = 403,
                           .reason = "fieldNotWritable",
                           .message =
                               "The parents field is not directly writable in update requests. Use the "
                               "addParents and removeParents parameters instead."}
            .response();
    }
    if (file->revisions.empty()) {
        return GoogleError{.status = 400,
                           .reason = "badRequest",
                           .message = "The content of this file cannot be replaced by an upload."}
            .response();
    }
    file->name = upload->name.value_or(file->name);
    file->mediaType = upload->mimeType.value_or(upload->contentType);
    drive().addRevision(*file, std::move(upload->content), Date::now());
    drive().noteUpload(*file);
    return oneFile(request, *file);
}

JSONObject GoogleDriveSandbox::state() const {
    return driveState(drive(), googleUserName, googleUserEmail);
}

void GoogleDriveSandbox::reset() {
    drive_ = newDrive();
    nextPages_.clear();
}

} // namespace zelto::sandbox
