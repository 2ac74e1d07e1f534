// The content of a note for Evernote: whatever the bytes, it is UTF-8 without control characters, its tags
// are balanced, its texts hold no bare "<" or "&", and it refers to each file of the note and to no other.

#include "Require.h"

#include <ZeltoHost/Evernote/EvernoteImportFile.h>
#include <ZeltoHost/Evernote/EvernoteNoteContent.h>
#include <ZeltoHost/HTML/HTMLSpace.h>

#include <Platform/UTF8.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace zelto;

namespace {

// The MD5 of "a" and of "b".
const std::string hashes[] = {"0cc175b9c0f1b6a831c399e269772661", "92eb5ffee6ae2fec3ad71c777531578f"};
const std::vector<EvernoteAttachment> files{{"a", "image/png", {'a'}}, {"b", "", {'b'}}};

void checkText(const std::string& text, const std::string& whole) {
    for (auto at = text.find('&'); at != std::string::npos; at = text.find('&', at + 1)) {
        const auto end = text.find(';', at);
        require(end != std::string::npos && end - at <= 6, "an ampersand stands alone", whole);
    }
}

// The content of the en-note element.
void checkBalance(const std::string& enml) {
    std::vector<std::string> open;
    auto at = enml.find("<en-note>");
    while (at < enml.size()) {
        const auto end = enml.find('>', at);
        require(end != std::string::npos, "a tag does not end", enml);
        const auto tag = enml.substr(at + 1, end - at - 1);
        if (tag.starts_with('/')) {
            require(!open.empty() && open.back() == tag.substr(1), "tags are not balanced", enml);
            open.pop_back();
        } else if (!tag.ends_with('/')) {
            open.push_back(tag.substr(0, tag.find(' ')));
        }
        require(tag.find('<') == std::string::npos, "a tag holds a bare <", enml);
        const auto next = enml.find('<', end);
        checkText(enml.substr(end + 1, next == std::string::npos ? next : next - end - 1), enml);
        at = next;
    }
    require(open.empty(), "an element is not closed", enml);
}

void checkFiles(const std::string& enml) {
    constexpr std::string_view start = "<en-media type=\"";
    for (const auto& hash : hashes) {
        require(enml.find(" hash=\"" + hash + "\"") != std::string::npos, "a file is not shown", enml);
    }
    for (auto at = enml.find("<en-media"); at != std::string::npos; at = enml.find("<en-media", at + 1)) {
        const auto tag = enml.substr(at, enml.find('>', at) - at);
        require(tag.starts_with(start), "a reference has no type", enml);
        require(tag.find(hashes[0]) != std::string::npos || tag.find(hashes[1]) != std::string::npos,
                "a file is shown that is not there", enml);
    }
}

void checkCharacters(const std::string& text) {
    require(isValidUTF8(text), "a note is not UTF-8", text);
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        require(byte >= 0x20 || isHTMLSpace(c), "a note holds a control character", text);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string content(reinterpret_cast<const char*>(data), size);
    const auto enml = evernoteNoteContent(content, files);
    checkCharacters(enml);
    checkBalance(enml);
    checkFiles(enml);
    std::string file;
    const auto written = writeEvernoteImportFile({.title = content,
                                                  .content = enml,
                                                  .created = {},
                                                  .notebook = {"", content},
                                                  .tags = {{"", content}},
                                                  .sourceUrl = content,
                                                  .attachments = {{content, content, {1}}}},
                                                 [&](std::string_view piece) {
                                                     file += piece;
                                                     return Result<void, FileError>();
                                                 });
    require(written.has_value());
    checkCharacters(file);
    return 0;
}
