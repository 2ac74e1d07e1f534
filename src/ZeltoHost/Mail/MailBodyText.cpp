#include <Platform/Text.h>
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

// Reads the texts of a body, within the limit for all of them together.
class BodyReader {
  public:
    explicit BodyReader(const MailMessage& message) : message_(message), room_(message.limits.bodyBytes) {}

    Result<std::string, MailError> read(std::size_t index) {
        auto text = readText(*message_.file, message_.parts[index], room_);
        if (text) {
            room_ -= std::min(room_, text->size());
        }
        return text;
    }

    Result<std::string, MailError> plain(std::size_t index) {
        auto text = isHTML(index) ? html(index) : read(index);
        return text && isHTML(index) ? plainTextFromHTML(*text) : text;
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
        return isHTML(index) ? *std::move(text)
                             : "<div>" + htmlFromPlainText(withoutEndingBlanks(*text)) + "</div>";
    }

  private:
    bool isHTML(std::size_t index) const {
        const auto& type = message_.parts[index].mediaType;
        return type == "text/html" || type == "text/enriched" || type == "text/richtext";
    }

    const MailMessage& message_;
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

Result<std::string, MailError> plainBodyOf(const MailMessage& message) {
    BodyReader reader(message);
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

Result<std::string, MailError> htmlBodyOf(const MailMessage& message) {
    BodyReader reader(message);
    std::string body;
    for (const auto& section : message.body) {
        for (const auto index : section.html.empty() ? section.plain : section.html) {
            const auto html = reader.html(index);
            if (!html) {
                return html;
            }
            body.append(body.empty() ? "" : "\n").append(*html);
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
