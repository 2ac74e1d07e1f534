// What the drives of the sandbox read of a request: queries, field masks, paths and arguments. Whatever they
// are, they are understood or refused, and what is chosen, written and found keeps its rules.

#include "Require.h"

#include <ZeltoSandbox/Dropbox/DropboxArguments.h>
#include <ZeltoSandbox/Dropbox/DropboxPaths.h>
#include <ZeltoSandbox/Dropbox/DropboxSearch.h>
#include <ZeltoSandbox/GoogleDrive/FieldMask.h>
#include <ZeltoSandbox/GoogleDrive/GoogleDriveJSON.h>
#include <ZeltoSandbox/GoogleDrive/GoogleDriveQuery.h>

#include <Platform/NeverDestroyed.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <cstdint>

using namespace zelto;
using namespace zelto::sandbox;

namespace {

// Each member of the part is one of the whole.
void checkPart(const JSONValue& part, const JSONValue& whole) {
    if (const auto* list = part.asArray()) {
        require(whole.asArray() && list->size() == whole.asArray()->size());
        for (std::size_t i = 0; i < list->size(); ++i) {
            checkPart((*list)[i], (*whole.asArray())[i]);
        }
        return;
    }
    if (!part.asObject()) {
        require(part == whole);
        return;
    }
    for (const auto& [name, value] : *part.asObject()) {
        require(whole.find(name) != nullptr);
        checkPart(value, *whole.find(name));
    }
}

void checkGoogleDrive(std::string_view text) {
    const DriveEntry root;
    DriveEntry file{.id = "id", .parent = &root, .name = std::string(text), .mediaType = "a/b"};
    if (const auto query = GoogleDriveQuery::parse(text)) {
        query->matches(file);
        query->parents();
    }
    static const auto& schema = neverDestroyed(googleListSchema());
    if (const auto mask = FieldMask::parse(text, schema)) {
        checkPart(mask->applied(schema), schema);
    }
    // A name finds itself, however it has to be escaped.
    std::string quoted;
    for (const char c : text) {
        quoted.append(c == '\'' || c == '\\' ? "\\" : "").push_back(c);
    }
    const auto byName = GoogleDriveQuery::parse("name = '" + quoted + "'");
    require(byName && byName->matches(file));
}

void checkDropbox(std::string_view text) {
    const auto lower = dropboxLower(text);
    require(isValidUTF8(lower) && dropboxLower(lower) == lower);
    if (const auto names = text.starts_with('/') ? namesOnPath(text) : std::nullopt) {
        std::string path;
        for (const auto& name : *names) {
            path += "/" + name;
        }
        require(path == text);
    }
    DriveEntry file;
    file.name = text;
    DropboxSearch(text).matchesName(file);
    const auto ascii = asciiJSON(JSONValue(text));
    require(std::ranges::all_of(ascii, [](char c) { return c >= ' ' && c <= '~'; }));
    const auto back = JSONValue::parse(ascii);
    require(back && *back->asString() == text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (isValidUTF8(text)) {
        checkGoogleDrive(text);
        checkDropbox(text);
    }
    return 0;
}
