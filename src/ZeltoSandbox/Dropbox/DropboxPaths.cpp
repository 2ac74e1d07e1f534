#include <ZeltoSandbox/Dropbox/DropboxPaths.h>

#include <Platform/ASCII.h>
#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <array>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumNameLength = 255; // characters
constexpr std::size_t maximumDepth = 100;

constexpr std::array<std::string_view, 6> disallowedNames = {".dropbox",  ".dropbox.attr", ".dropbox.cache",
                                                             ".ds_store", "desktop.ini",   "thumbs.db"};

} // namespace

std::string dropboxLower(std::string_view text) {
    if (std::ranges::all_of(text, isASCII)) {
        return toASCIILower(text);
    }
    std::string lower;
    while (!text.empty()) {
        const auto length = firstCodePoint(text).length;
        // Folding writes some characters as several: "ß" as "ss". Those have no other case, or hardly any.
        const auto folded = foldedCase(text.substr(0, length));
        lower += codePointCount(folded) == 1 ? std::string_view(folded) : text.substr(0, length);
        text.remove_prefix(length);
    }
    return lower;
}

std::string dropboxPath(const DriveEntry& entry) {
    return entry.parent ? dropboxPath(*entry.parent) + "/" + entry.name : std::string();
}

Result<void, std::string> checkDropboxPath(std::string_view path, bool allowsRevisions) {
    if (path == "/") {
        return failure(std::string("path: Specify the root folder as an empty string rather than as \"/\"."));
    }
    const bool isGood = path.empty() || path.front() == '/' || (path.starts_with("id:") && path.size() > 3) ||
                        (allowsRevisions && path.starts_with("rev:") && path.size() > 12);
    if (!isGood) {
        return failure("path: '" + std::string(path) + "' did not match pattern '(/(.|[\\r\\n])*|id:.*)" +
                       (allowsRevisions ? "|(rev:[0-9a-f]{9,})'" : "'"));
    }
    return {};
}

std::optional<std::vector<std::string>> namesOnPath(std::string_view path) {
    std::vector<std::string> names;
    while (!path.empty()) {
        path.remove_prefix(1);
        const auto name = path.substr(0, path.find('/'));
        const bool isName = !name.empty() && name != "." && name != ".." && name.back() != ' ' &&
                            name.find('\\') == std::string_view::npos &&
                            codePointCount(name) <= maximumNameLength && names.size() < maximumDepth &&
                            std::ranges::none_of(name, [](char c) { return c >= '\0' && c < ' '; });
        if (!isName) {
            return std::nullopt;
        }
        names.emplace_back(name);
        path.remove_prefix(name.size());
    }
    return names;
}

bool isDisallowedName(std::string_view name) {
    return std::ranges::find(disallowedNames, toASCIILower(name)) != disallowedNames.end() ||
           name.starts_with("~$") || name.starts_with(".~");
}

DriveEntry* dropboxChild(Drive& drive, const DriveEntry& folder, std::string_view name) {
    const auto lower = dropboxLower(name);
    for (auto* child : drive.children(folder)) {
        if (!child->isTrashed && dropboxLower(child->name) == lower) {
            return child;
        }
    }
    return nullptr;
}

const DriveEntry* dropboxEntry(Drive& drive, std::string_view path) {
    if (path.starts_with("id:")) {
        const auto* entry = drive.find(path);
        return entry && !entry->isInTrash() ? entry : nullptr;
    }
    const auto names = namesOnPath(path);
    const auto* entry = names ? &drive.root() : nullptr;
    for (std::size_t i = 0; entry && i < names->size(); ++i) {
        entry = dropboxChild(drive, *entry, (*names)[i]);
    }
    return entry;
}

} // namespace zelto::sandbox
