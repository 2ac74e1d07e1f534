#include <Platform/Text.h>
#include <ZeltoHost/HTML/MarkupEscape.h>
#include <ZeltoHost/HTML/PlainText.h>
#include <ZeltoHost/Mail/GMimeInternal.h>
#include <ZeltoHost/Mail/MailBodyText.h>
#include <ZeltoHost/Mail/MailContent.h>

namespace zelto {

namespace {

// text/enriched (RFC 1896) and text/richtext as HTML.
std::string htmlFromEnrichedText(std::string text, bool richText) {
    const GLibPointer<GMimeFilter> filter(
        g_mime_filter_enriched_new(richText ? GMIME_FILTER_ENRICHED_IS_RICHTEXT : 0));
    char* out = nullptr;
    std::size_t size = 0;
    std::size_t reserved = 0;
    g_mime_filter_complete(filter.get(), text.data(), text.size(), 0, &out, &size, &reserved);
    return {out, size};
}

std::string_view withoutEndingBlanks(std::string_view text) {
    const auto last = text.find_last_not_of(" \t\n");
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

// Plain text is written in columns, as for signatures and tables. The first line end of a pre element does
// not count.
std::string preformatted(std::string_view text) {
    std::string html = "<pre style=\"font-family:monospace;white-space:pre-wrap\">\n";
    appendEscaped(html, text, Quotes::keep);
    html += "</pre>";
    return html;
}

// Reads the texts of a body, within the limit for all of them together.
class BodyReader {
  public:
    BodyReader(const MailMessage& message, ContentNotes* notes)
        : message_(message), notes_(notes), room_(message.limits.textBytes) {}

    Result<std::string, MailError> read(std::size_t index) {
        auto read = readText(*message_.file, message_.parts[index], room_);
        if (!read) {
            return failure(read.error());
        }
        room_ -= std::min(room_, read->text.size());
        if (read->isCut && notes_ != nullptr) {
            notes_->add(ContentNoteKind::textCut);
        }
        return std::move(read->text);
    }

    Result<std::string, MailError> plain(std::size_t index) {
        auto text = isHTML(index) ? html(index) : read(index);
        return text && isHTML(index) ? plainTextFromHTML(*std::move(text), {.notes = notes_}) : text;
    }

    Result<std::string, MailError> html(std::size_t index) {
        auto text = read(index);
        if (!text) {
            return text;
        }
        const auto& type = message_.parts[index].mediaType;
        if (type == "text/enriched" || type == "text/richtext") {
            return htmlFromEnrichedText(*std::move(text), type == "text/richtext");
        }
        return isHTML(index) ? std::move(text) : preformatted(withoutEndingBlanks(*text));
    }

  private:
    bool isHTML(std::size_t index) const {
        const auto& type = message_.parts[index].mediaType;
        return type == "text/html" || type == "text/enriched" || type == "text/richtext";
    }

    const MailMessage& message_;
    ContentNotes* notes_;
    std::size_t room_;
};

Result<std::string, MailError> joinedPlain(BodyReader& reader, const std::vector<std::size_t>& parts) {
    std::string joined;
    for (const auto index : parts) {
        const auto text = reader.plain(index);
        if (!text) {
            return text;
        }
        const auto piece = withoutEndingBlanks(*text);
        joined.append(joined.empty() || piece.empty() ? "" : "\n\n").append(piece);
    }
    return joined;
}

} // namespace

Result<std::string, MailError> plainBodyOf(const MailMessage& message, ContentNotes* notes) {
    BodyReader reader(message, notes);
    std::string body;
    for (const auto& section : message.body) {
        auto text = joinedPlain(reader, section.plain);
        // Some programs send an empty plain text with the HTML.
        if (text && isBlank(*text) && !section.html.empty()) {
            text = joinedPlain(reader, section.html);
        }
        if (!text) {
            return text;
        }
        body.append(body.empty() || text->empty() ? "" : "\n\n").append(*text);
    }
    return body;
}

Result<std::string, MailError> htmlBodyOf(const MailMessage& message, ContentNotes* notes) {
    BodyReader reader(message, notes);
    std::string body;
    for (const auto& section : message.body) {
        for (const auto index : section.html.empty() ? section.plain : section.html) {
            auto html = reader.html(index);
            if (!html) {
                return html;
            }
            if (body.empty()) {
                body = *std::move(html);
            } else {
                body.append("\n").append(*html);
            }
        }
    }
    return body;
}

Result<Data, MailError> inlineImageData(const MailMessage& message, const MailInlineImage& image,
                                        std::size_t limit) {
    const auto content = readContent(*message.file, message.parts[image.part], limit);
    return content ? Result<Data, MailError>(dataOf(*content)) : failure(content.error());
}

} // namespace zelto
