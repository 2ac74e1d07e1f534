#include <ZeltoSandbox/Dropbox/DropboxUpload.h>

#include <ZeltoSandbox/Dropbox/DropboxArguments.h>
#include <ZeltoSandbox/Dropbox/DropboxErrors.h>
#include <ZeltoSandbox/Dropbox/DropboxJSON.h>
#include <ZeltoSandbox/Dropbox/DropboxPaths.h>

#include <Platform/FileNames.h>
#include <Platform/MediaTypes.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

using Kind = DropboxField::Kind;

constexpr std::string_view function = "files/upload";
constexpr std::uint64_t maximumUpload = std::uint64_t{150} << 20;

constexpr DropboxField fields[] = {
    {"path", Kind::text, true},
    {"mode"},
    {"autorename", Kind::flag},
    {"client_modified", Kind::text},
    {"mute", Kind::flag},
    {"property_groups"},
    {"strict_conflict", Kind::flag},
    {"content_hash", Kind::text},
};

struct Upload {
    enum class Mode { add, overwrite, update };

    Mode mode = Mode::add;
    std::string revision; // that an update replaces
    bool renames = false;
    bool isStrict = false;
    SpoolRange content;
    std::string hash;
};

// Where the file goes: the folder that is there, folders to be made in it, and the name.
struct Place {
    const DriveEntry* folder = nullptr;
    std::vector<std::string> missing;
    std::string name;
    DriveEntry* present = nullptr; // of that name
};

// "add", {".tag": "add"} or {".tag": "update", "update": "<rev>"}; false for anything else.
bool readMode(const JSONValue* mode, Upload& upload) {
    if (!mode) {
        return true;
    }
    const auto tag = mode->asString() ? *mode->asString() : textOf(*mode, ".tag");
    upload.revision = textOf(*mode, "update");
    upload.mode = tag == "overwrite" ? Upload::Mode::overwrite
                  : tag == "update"  ? Upload::Mode::update
                                     : Upload::Mode::add;
    return tag == "add" || tag == "overwrite" || (tag == "update" && !upload.revision.empty());
}

Result<Place, SandboxResponse> placeOf(Drive& drive, std::vector<std::string> names) {
    Place place{.folder = &drive.root(), .missing = {}, .name = std::move(names.back())};
    names.pop_back();
    for (auto& name : names) {
        if (isDisallowedName(name)) {
            return failure(dropboxWriteConflict({"disallowed_name"}));
        }
        const auto* child = place.missing.empty() ? dropboxChild(drive, *place.folder, name) : nullptr;
        if (child && !child->isFolder()) {
            return failure(dropboxWriteConflict({"conflict", "file_ancestor"}));
        }
        if (child) {
            place.folder = child;
        } else {
            place.missing.push_back(std::move(name));
        }
    }
    if (isDisallowedName(place.name)) {
        return failure(dropboxWriteConflict({"disallowed_name"}));
    }
    place.present = place.missing.empty() ? dropboxChild(drive, *place.folder, place.name) : nullptr;
    return place;
}

bool replaces(const Upload& upload, const DriveEntry& present) {
    if (present.isFolder()) {
        return false;
    }
    switch (upload.mode) {
    case Upload::Mode::overwrite:
        return true;
    case Upload::Mode::update:
        return present.revisions.back().id == upload.revision;
    case Upload::Mode::add:
        break;
    }
    return false;
}

std::string freeName(Drive& drive, const DriveEntry& folder, const std::string& name) {
    std::size_t number = 1;
    while (dropboxChild(drive, folder, numberedFileName(name, number))) {
        ++number;
    }
    return numberedFileName(name, number);
}

std::string mediaTypeOfName(std::string_view name) {
    const auto dot = name.rfind('.');
    const auto type =
        dot == std::string_view::npos ? std::nullopt : mediaTypeForExtension(name.substr(dot + 1));
    return std::string(type.value_or("application/octet-stream"));
}

SandboxResponse stored(Drive& drive, Place place, Upload upload) {
    const auto now = Date::now();
    if (place.present) {
        drive.addRevision(*place.present, std::move(upload.content), now);
    } else {
        for (auto& name : place.missing) {
            place.folder = &drive.addFolder(*place.folder, std::move(name), now);
        }
        auto type = mediaTypeOfName(place.name);
        place.present = &drive.addFile(*place.folder, std::move(place.name), std::move(type),
                                       std::move(upload.content), now);
    }
    drive.noteUpload(*place.present);
    return SandboxResponse::json(dropboxFileJSON(*place.present, place.present->revisions.back()));
}

// Decides what becomes of a name that is taken.
SandboxResponse resolved(Drive& drive, const SandboxSettings& settings, Place place, Upload upload) {
    if (auto* present = place.present; present && !replaces(upload, *present)) {
        // The same content is no conflict, unless the client wants it to be one.
        if (!present->isFolder() && !upload.isStrict && present->revisions.back().hash == upload.hash) {
            return SandboxResponse::json(dropboxFileJSON(*present, present->revisions.back()));
        }
        if (!upload.renames) {
            return dropboxWriteConflict({"conflict", present->isFolder() ? "folder" : "file"});
        }
        place.name = freeName(drive, *place.folder, place.name);
        place.present = nullptr;
    }
    if (!drive.hasSpace(settings.drives, upload.content.size)) {
        return dropboxWriteConflict({"insufficient_space"});
    }
    if (drive.uploadCount() >= Drive::maximumUploadCount) {
        return dropboxWriteConflict({"too_many_write_operations"});
    }
    return stored(drive, std::move(place), std::move(upload));
}

} // namespace

SandboxResponse uploadToDropbox(Drive& drive, const SandboxSettings& settings,
                                const SandboxRequest& request) {
    if (request.contentType != "application/octet-stream") {
        return dropboxBadRequest(function, "Bad HTTP \"Content-Type\" header: \"" + request.contentType +
                                               "\".  Expecting one of \"application/octet-stream\", "
                                               "\"text/plain; charset=dropbox-cors-hack\".");
    }
    const auto arguments = dropboxHeader(request);
    if (!arguments) {
        return dropboxBadRequest(function, arguments.error());
    }
    const auto bad = [](const std::string& problem) {
        return dropboxBadRequest(function, "HTTP header \"Dropbox-API-Arg\": " + problem);
    };
    if (const auto problem = dropboxProblem(*arguments, fields); !problem.empty()) {
        return bad(problem);
    }
    const auto path = textOf(*arguments, "path");
    if (const auto good = checkDropboxPath(path, false); !good) {
        return bad(good.error());
    }
    Upload upload{.revision = {},
                  .renames = flagOf(*arguments, "autorename"),
                  .isStrict = flagOf(*arguments, "strict_conflict"),
                  .content = SpoolRange::all(request.body),
                  .hash = {}};
    if (!readMode(arguments->find("mode"), upload)) {
        return bad("mode: expected one of 'add', 'overwrite', 'update'");
    }
    if (upload.content.size > settings.attachmentLimit.value_or(maximumUpload)) {
        return dropboxConflict({"payload_too_large"});
    }
    auto names = path.starts_with('/') ? namesOnPath(path) : std::nullopt;
    if (!names) {
        return dropboxWriteConflict({"malformed_path"});
    }
    upload.hash = driveContentHash(upload.content);
    const auto claimed = textOf(*arguments, "content_hash");
    if (!claimed.empty() && claimed != upload.hash) {
        return dropboxConflict({"content_hash_mismatch"});
    }
    auto place = placeOf(drive, std::move(*names));
    return place ? resolved(drive, settings, *std::move(place), std::move(upload)) : place.error();
}

} // namespace zelto::sandbox
