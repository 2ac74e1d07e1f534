#include <ZeltoHost/Evernote/EvernoteImportFile.h>

#include <ZeltoHost/HTML/MarkupEscape.h>

#include <Platform/Base64.h>
#include <Platform/DateFormatter.h>
#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <span>
#include <utility>

namespace zelto {

namespace {

using Write = std::function<Result<void, FileError>(std::string_view)>;

constexpr std::size_t maximumTitle = 255;       // characters
constexpr std::size_t maximumTag = 100;         // characters
constexpr std::size_t maximumSourceURL = 4'096; // characters
constexpr std::size_t pieceSize = std::size_t{192} << 10;
static_assert(pieceSize % 3 == 0, "Base64 of all pieces but the last has no padding");

constexpr std::string_view sectionEnd = "]]>";

std::string escaped(std::string_view text) {
    std::string markup;
    appendEscaped(markup, repairedUTF8(text), Quotes::escape);
    return markup;
}

std::string element(const std::string& name, std::string_view text) {
    return "<" + name + ">" + escaped(text) + "</" + name + ">";
}

// As one line without blanks at its ends.
std::string lineOf(std::string_view text, std::size_t maximum) {
    auto line = repairedUTF8(text);
    std::ranges::replace_if(
        line, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
    return std::string(trimmed(prefixUTF16Units(trimmed(line), maximum)));
}

std::string titleOf(std::string_view title) {
    const auto line = lineOf(title, maximumTitle);
    return line.empty() ? "Untitled" : line;
}

// Tags are separated by commas where they are shown.
std::string tagOf(std::string name) {
    std::ranges::replace(name, ',', ';');
    return lineOf(name, maximumTag);
}

// The end of a section in the text is written in two sections.
std::string section(std::string_view text) {
    std::string markup = "<![CDATA[";
    for (auto end = text.find(sectionEnd); end != std::string_view::npos; end = text.find(sectionEnd)) {
        markup.append(text.substr(0, end + 2)).append("]]><![CDATA[");
        text.remove_prefix(end + 2);
    }
    return markup.append(text).append(sectionEnd);
}

std::string beginningOf(const EvernoteImportNote& note) {
    const DateFormatter times("yyyyMMdd'T'HHmmss'Z'", "en_US_POSIX", "UTC");
    const auto created = times.string(note.created);
    std::string markup = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                         "<!DOCTYPE en-export SYSTEM \"http://xml.evernote.com/pub/evernote-export3.dtd\">\n"
                         "<en-export export-date=\"" +
                         created + "\" application=\"Zelto\" version=\"1\">\n<note>\n" +
                         element("title", titleOf(note.title)) + "\n<content>" + section(note.content) +
                         "</content>\n" + element("created", created) + "\n" + element("updated", created) +
                         "\n";
    for (const auto& each : note.tags) {
        if (const auto tag = tagOf(each.name); !tag.empty()) {
            markup += element("tag", tag) + "\n";
        }
    }
    markup += "<note-attributes>";
    if (!note.sourceUrl.empty() && utf16Length(note.sourceUrl) <= maximumSourceURL) {
        markup += element("source-url", note.sourceUrl);
    }
    return markup + "<application-data key=\"notebook\">" + escaped(note.notebook.name) +
           "</application-data></note-attributes>\n";
}

Result<void, FileError> writeResource(const EvernoteAttachment& attachment, const Write& write) {
    auto written = write("<resource><data encoding=\"base64\">");
    for (std::span<const std::uint8_t> left(attachment.data); written && !left.empty();) {
        const auto piece = left.first(std::min(left.size(), pieceSize));
        written = write(base64Encoded({reinterpret_cast<const char*>(piece.data()), piece.size()}));
        left = left.subspan(piece.size());
    }
    if (!written) {
        return written;
    }
    const auto& type = attachment.mimeType;
    const auto name = attachment.name.empty() ? "" : element("file-name", attachment.name);
    return write("</data>" + element("mime", type.empty() ? "application/octet-stream" : type) +
                 "<resource-attributes>" + name + "</resource-attributes></resource>\n");
}

} // namespace

Result<void, FileError> writeEvernoteImportFile(const EvernoteImportNote& note, const Write& write) {
    auto written = write(beginningOf(note));
    for (const auto& attachment : note.attachments) {
        if (!written) {
            return written;
        }
        written = writeResource(attachment, write);
    }
    return written ? write("</note>\n</en-export>\n") : written;
}

} // namespace zelto
