#include <ZeltoSandbox/Dropbox/DropboxSandbox.h>

#include <ZeltoSandbox/BearerAccess.h>
#include <ZeltoSandbox/Drives/DemoFiles.h>
#include <ZeltoSandbox/Drives/DriveState.h>
#include <ZeltoSandbox/Dropbox/DropboxArguments.h>
#include <ZeltoSandbox/Dropbox/DropboxErrors.h>
#include <ZeltoSandbox/Dropbox/DropboxJSON.h>
#include <ZeltoSandbox/Dropbox/DropboxPaths.h>
#include <ZeltoSandbox/Dropbox/DropboxUpload.h>

#include <Platform/Crypto/RandomBytes.h>
#include <Platform/Text.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

using Kind = DropboxField::Kind;

constexpr std::string_view contentHost = "content.dropboxapi.com";
constexpr std::size_t maximumCursorCount = 10'000;
constexpr std::size_t maximumPage = 2000;
constexpr std::size_t maximumMatches = 1000;
constexpr std::size_t usualMatches = 100;
constexpr std::size_t maximumQuery = 1000; // characters

std::string padded(std::string text, std::uint64_t number) {
    const auto digits = std::to_string(number);
    return text.append(12 - digits.size(), '0') + digits;
}

std::string entryID(std::uint64_t number) {
    return padded("id:ZeltoFiles", number);
}

std::string revisionID(std::uint64_t number) {
    return padded("5a4d", number);
}

std::string newCursor() {
    return randomToken(48);
}

std::unique_ptr<Drive> newDrive() {
    auto drive = std::make_unique<Drive>(Drive::Names{entryID, revisionID});
    addDemoFiles(*drive);
    return drive;
}

constexpr DropboxField listFields[] = {
    {"path", Kind::text, true},
    {"recursive", Kind::flag},
    {"include_media_info", Kind::flag},
    {"include_deleted", Kind::flag},
    {"include_has_explicit_shared_members", Kind::flag},
    {"include_mounted_folders", Kind::flag},
    {"limit", Kind::number, false, 1, maximumPage},
    {"shared_link"},
    {"include_property_groups"},
    {"include_non_downloadable_files", Kind::flag},
};
constexpr DropboxField cursorFields[] = {{"cursor", Kind::text, true}};
constexpr DropboxField searchFields[] = {
    {"query", Kind::text, true}, {"options"}, {"match_field_options"}, {"include_highlights", Kind::flag}};
constexpr DropboxField searchOptions[] = {
    {"path", Kind::text},
    {"max_results", Kind::number, false, 1, maximumMatches},
    {"order_by"},
    {"file_status"},
    {"filename_only", Kind::flag},
    {"file_extensions"},
    {"file_categories"},
    {"account_id", Kind::text},
};
constexpr DropboxField matchFieldOptions[] = {{"include_highlights", Kind::flag}};
constexpr DropboxField downloadFields[] = {{"path", Kind::text, true}, {"rev", Kind::text}};

// "files/list_folder"
std::string functionOf(const SandboxRequest& request) {
    return request.path.starts_with("/2/") ? request.path.substr(3) : request.path;
}

// The checked arguments of a request to the API's host.
Result<JSONValue, SandboxResponse> argumentsOf(const SandboxRequest& request,
                                               std::span<const DropboxField> fields) {
    auto arguments = dropboxBody(request);
    if (!arguments) {
        return failure(dropboxBadRequest(functionOf(request), arguments.error()));
    }
    if (const auto problem = dropboxProblem(*arguments, fields); !problem.empty()) {
        return failure(dropboxBadRequest(functionOf(request), "request body: " + problem));
    }
    return *std::move(arguments);
}

// A union without a value: "active" or {".tag": "active"}.
std::string tagOf(const JSONValue& options, std::string_view name, std::string_view instead) {
    const auto* value = options.find(name);
    return value && value->asObject() ? textOf(*value, ".tag", instead) : textOf(options, name, instead);
}

std::string searchProblem(const JSONValue& arguments) {
    if (codePointCount(textOf(arguments, "query")) > maximumQuery) {
        return "query: longer than the maximum length 1000";
    }
    const auto* options = arguments.find("options");
    if (const auto problem = options ? dropboxProblem(*options, searchOptions) : ""; !problem.empty()) {
        return "options: " + problem;
    }
    const auto* matchFields = arguments.find("match_field_options");
    if (const auto problem = matchFields ? dropboxProblem(*matchFields, matchFieldOptions) : "";
        !problem.empty()) {
        return "match_field_options: " + problem;
    }
    const auto status = options ? tagOf(*options, "file_status", "active") : "active";
    if (status != "active" && status != "deleted") {
        return "options: file_status: unknown tag '" + status + "'";
    }
    const auto good = checkDropboxPath(options ? textOf(*options, "path") : "", false);
    return good ? "" : "options: " + good.error();
}

bool isBelow(const DriveEntry& entry, const DriveEntry& folder) {
    return entry.parent && (entry.parent == &folder || isBelow(*entry.parent, folder));
}

// By what a listing is in order.
std::string orderOf(const DriveEntry& entry) {
    return dropboxLower(dropboxPath(entry)) + '\0' + entry.id;
}

} // namespace

const SandboxEndpoint<DropboxSandbox> DropboxSandbox::endpoints[] = {
    {"POST", "2/users/get_current_account", &DropboxSandbox::account, "account_info.read"},
    {"POST", "2/files/list_folder", &DropboxSandbox::listFolder, "files.metadata.read"},
    {"POST", "2/files/list_folder/continue", &DropboxSandbox::continueListing, "files.metadata.read"},
    {"POST", "2/files/search_v2", &DropboxSandbox::search, "files.metadata.read"},
    {"POST", "2/files/search/continue_v2", &DropboxSandbox::continueSearch, "files.metadata.read"},
    {"POST", "2/files/upload", &DropboxSandbox::upload, "files.content.write"},
    {"POST", "2/files/download", &DropboxSandbox::download, "files.content.read"},
};

std::unique_ptr<SandboxService> DropboxSandbox::make(SandboxContext& context, const SandboxServiceRow&) {
    return std::make_unique<DropboxSandbox>(context);
}

DropboxSandbox::DropboxSandbox(SandboxContext& context)
    : context_(context), drive_(newDrive()), cursors_(maximumCursorCount, newCursor),
      searches_(maximumCursorCount, newCursor) {}

SandboxResponse DropboxSandbox::respond(const SandboxRequest& request) {
    drive().applySettings(context_.settings.drives);
    auto response = routed(request);
    drive().publish(context_.files);
    return response;
}

SandboxResponse DropboxSandbox::routed(const SandboxRequest& request) {
    const auto grant = bearerGrant(request, context_.tokens, "Dropbox");
    if (!grant) {
        const bool hasExpired =
            context_.tokens.status("Dropbox", bearerToken(request).value_or("")) == TokenStatus::expired;
        return dropboxAccessRefusal(hasExpired ? "expired_access_token" : "invalid_access_token")
            .because(grant.error());
    }
    const auto* endpoint = endpointFor<DropboxSandbox>(request, endpoints);
    const auto function = functionOf(request);
    if (!endpoint) {
        return request.method == "POST"
                   ? dropboxBadRequest(function, "Unknown API function")
                   : dropboxBadRequest(function, "Your request's HTTP request method is \"" + request.method +
                                                     "\".  This function only accepts the HTTP request "
                                                     "method \"POST\".");
    }
    const bool isOfContent = function == "files/upload" || function == "files/download";
    if (isOfContent != (request.host == contentHost)) {
        return dropboxBadRequest(function, "This function is at https://" +
                                               std::string(isOfContent ? contentHost : "api.dropboxapi.com") +
                                               ", not at https://" + request.host + ".");
    }
    if (!coversScope(**grant, endpoint->scope)) {
        return dropboxMissingScope(endpoint->scope);
    }
    return (this->*endpoint->handler)(request);
}

SandboxResponse DropboxSandbox::failure(int status) const {
    return dropboxFailure(status);
}

SandboxResponse DropboxSandbox::account(const SandboxRequest& request) {
    const auto arguments = dropboxBody(request);
    if (!arguments || !arguments->isNull()) {
        return dropboxBadRequest(functionOf(request),
                                 arguments ? "request body: expected null, got value" : arguments.error());
    }
    return SandboxResponse::json(dropboxAccountJSON());
}

SandboxResponse DropboxSandbox::listFolder(const SandboxRequest& request) {
    const auto arguments = argumentsOf(request, listFields);
    if (!arguments) {
        return arguments.error();
    }
    const auto path = textOf(*arguments, "path");
    if (const auto good = checkDropboxPath(path, false); !good) {
        return dropboxBadRequest(functionOf(request), "request body: " + good.error());
    }
    if (path.starts_with('/') && !namesOnPath(path)) {
        return dropboxConflict({"path", "malformed_path"});
    }
    const auto* folder = dropboxEntry(drive(), path);
    if (!folder) {
        return dropboxConflict({"path", "not_found"});
    }
    if (!folder->isFolder()) {
        return dropboxConflict({"path", "not_folder"});
    }
    return listed({.folder = folder->id,
                   .isRecursive = flagOf(*arguments, "recursive"),
                   .hasDeleted = flagOf(*arguments, "include_deleted"),
                   .limit = static_cast<std::size_t>(numberOf(*arguments, "limit", maximumPage))});
}

SandboxResponse DropboxSandbox::continueListing(const SandboxRequest& request) {
    const auto arguments = argumentsOf(request, cursorFields);
    if (!arguments) {
        return arguments.error();
    }
    const auto cursor = textOf(*arguments, "cursor");
    const auto* listing = cursors_.find(cursor);
    return listing ? listed(*listing)
                   : dropboxBadRequest(functionOf(request), "Invalid \"cursor\" parameter: '" + cursor + "'");
}

SandboxResponse DropboxSandbox::listed(Listing listing) {
    const auto* folder = listing.folder == drive().root().id ? &drive().root() : drive().find(listing.folder);
    if (!folder || folder->isInTrash()) {
        return dropboxConflict({"path", "not_found"});
    }
    std::vector<std::pair<std::string, const DriveEntry*>> entries;
    const auto add = [&](const DriveEntry& entry) {
        if (auto order = orderOf(entry); order > listing.last) {
            entries.emplace_back(std::move(order), &entry);
        }
    };
    // A recursive listing begins with the folder itself.
    if (listing.isRecursive && folder->parent) {
        add(*folder);
    }
    for (const auto& [id, entry] : drive().entries()) {
        const bool isListed = entry.parent == folder || (listing.isRecursive && isBelow(entry, *folder));
        if (isListed && (!entry.isTrashed || listing.hasDeleted)) {
            add(entry);
        }
    }
    const auto count = std::min(listing.limit, entries.size());
    std::ranges::partial_sort(entries, entries.begin() + static_cast<std::ptrdiff_t>(count));
    JSONValue::Array page;
    for (std::size_t i = 0; i < count; ++i) {
        page.push_back(dropboxMetadataJSON(*entries[i].second));
        listing.last = entries[i].first;
    }
    const bool hasMore = count < entries.size();
    return SandboxResponse::json(JSONObject{{"entries", std::move(page)},
                                            {"cursor", cursors_.add(std::move(listing), std::nullopt)},
                                            {"has_more", hasMore}});
}

SandboxResponse DropboxSandbox::search(const SandboxRequest& request) {
    auto arguments = argumentsOf(request, searchFields);
    if (!arguments) {
        return arguments.error();
    }
    if (const auto problem = searchProblem(*arguments); !problem.empty()) {
        return dropboxBadRequest(functionOf(request), "request body: " + problem);
    }
    if (isBlank(textOf(*arguments, "query"))) {
        return dropboxConflict({"invalid_argument"});
    }
    return found({*std::move(arguments)});
}

SandboxResponse DropboxSandbox::continueSearch(const SandboxRequest& request) {
    const auto arguments = argumentsOf(request, cursorFields);
    if (!arguments) {
        return arguments.error();
    }
    const auto cursor = textOf(*arguments, "cursor");
    const auto* page = searches_.find(cursor);
    return page ? found(*page)
                : dropboxBadRequest(functionOf(request), "Invalid \"cursor\" parameter: '" + cursor + "'");
}

bool DropboxSandbox::isFound(const DriveEntry& entry, const DropboxSearch& query,
                             const JSONValue& options) const {
    const bool isNew = entry.date > Date::now() - context_.settings.drives.searchDelay;
    const bool isDeleted = tagOf(options, "file_status", "active") == "deleted";
    if (isNew || entry.isTrashed != isDeleted) {
        return false;
    }
    return query.matchesName(entry) ||
           (!flagOf(options, "filename_only") && !entry.isTrashed && query.matchesContent(entry));
}

SandboxResponse DropboxSandbox::found(const SearchPage& page) {
    const auto* given = page.arguments.find("options");
    const auto options = given ? *given : JSONValue(JSONObject());
    const auto* folder = dropboxEntry(drive(), textOf(options, "path"));
    if (!folder) {
        return dropboxConflict({"path", "not_found"});
    }
    const DropboxSearch query(textOf(page.arguments, "query"));
    std::vector<const DriveEntry*> entries;
    for (const auto& [id, entry] : drive().entries()) {
        if (isBelow(entry, *folder) && isFound(entry, query, options)) {
            entries.push_back(&entry);
        }
    }
    const auto begin = std::min(page.position, entries.size());
    const auto limit = static_cast<std::size_t>(numberOf(options, "max_results", usualMatches));
    const auto end = std::min(entries.size(), begin + limit);
    JSONValue::Array matches;
    for (auto i = begin; i < end; ++i) {
        const auto* kind = query.matchesName(*entries[i]) ? "filename" : "file_content";
        matches.push_back(JSONObject{
            {"metadata", JSONObject{{".tag", "metadata"}, {"metadata", dropboxMetadataJSON(*entries[i])}}},
            {"match_type", JSONObject{{".tag", kind}}}});
    }
    JSONObject response{{"matches", std::move(matches)}, {"has_more", end < entries.size()}};
    if (end < entries.size()) {
        response.set("cursor", searches_.add({page.arguments, end}, std::nullopt));
    }
    return SandboxResponse::json(std::move(response));
}

SandboxResponse DropboxSandbox::upload(const SandboxRequest& request) {
    return uploadToDropbox(drive(), context_.settings, request);
}

SandboxResponse DropboxSandbox::download(const SandboxRequest& request) {
    const auto function = functionOf(request);
    const auto& type = request.contentType;
    if (!type.empty() && type != "application/octet-stream" && type != "text/plain") {
        return dropboxBadRequest(function, "Bad HTTP \"Content-Type\" header: \"" + type +
                                               "\".  Expecting one of \"application/octet-stream\", "
                                               "\"text/plain; charset=utf-8\".");
    }
    if (request.body->size() > 0) {
        return dropboxBadRequest(function, "Request body must be empty.");
    }
    const auto arguments = dropboxHeader(request);
    if (!arguments) {
        return dropboxBadRequest(function, arguments.error());
    }
    auto problem = dropboxProblem(*arguments, downloadFields);
    const auto path = textOf(*arguments, "path");
    if (const auto good = checkDropboxPath(path, true); problem.empty() && !good) {
        problem = good.error();
    }
    if (!problem.empty()) {
        return dropboxBadRequest(function, "HTTP header \"Dropbox-API-Arg\": " + problem);
    }
    if (path.starts_with('/') && !namesOnPath(path)) {
        return dropboxConflict({"path", "malformed_path"});
    }
    const bool isRevision = path.starts_with("rev:");
    auto [entry, revision] =
        isRevision ? drive().findRevision(path.substr(4))
                   : std::pair(dropboxEntry(drive(), path), static_cast<const DriveRevision*>(nullptr));
    if (!entry || entry->isInTrash()) {
        return dropboxConflict({"path", "not_found"});
    }
    if (entry->isFolder()) {
        return dropboxConflict({"path", "not_file"});
    }
    revision = revision ? revision : &entry->revisions.back();
    return {.fields = {{"Content-Type", "application/octet-stream"},
                       {"Dropbox-API-Result", asciiJSON(dropboxFileJSON(*entry, *revision))},
                       {"ETag", "W/\"" + revision->id + "\""}},
            .file = revision->content};
}

JSONObject DropboxSandbox::state() const {
    return driveState(drive(), dropboxUserName, dropboxUserEmail);
}

void DropboxSandbox::reset() {
    drive_ = newDrive();
    cursors_.clear();
    searches_.clear();
}

} // namespace zelto::sandbox
