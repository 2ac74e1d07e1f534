#include <ZeltoHost/Mail/EncodedWords.h>
#include <ZeltoHost/Mail/GMimeInternal.h>
#include <ZeltoHost/Mail/MailCharset.h>
#include <ZeltoHost/Mail/MailHeaderText.h>
#include <ZeltoHost/Mail/MailPartHeader.h>

#include <Platform/ASCII.h>

namespace zelto {

namespace {

std::string trimmedToken(std::string_view value) {
    const auto begin = value.find_first_not_of(" \t");
    if (begin == std::string_view::npos) {
        return {};
    }
    value.remove_prefix(begin);
    return toASCIILower(std::string(value.substr(0, value.find_first_of(" \t;("))));
}

MailEncoding encodingOf(const std::vector<MailField>& fields) {
    gmimeOptions();
    const auto* field = findField(fields, "Content-Transfer-Encoding");
    if (field == nullptr) {
        return MailEncoding::identity;
    }
    switch (g_mime_content_encoding_from_string(trimmedToken(field->value).c_str())) {
    case GMIME_CONTENT_ENCODING_BASE64:
        return MailEncoding::base64;
    case GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE:
        return MailEncoding::quotedPrintable;
    case GMIME_CONTENT_ENCODING_UUENCODE:
        return MailEncoding::uuencode;
    case GMIME_CONTENT_ENCODING_DEFAULT:
    case GMIME_CONTENT_ENCODING_7BIT:
    case GMIME_CONTENT_ENCODING_8BIT:
    case GMIME_CONTENT_ENCODING_BINARY:
        return MailEncoding::identity;
    }
    return MailEncoding::identity;
}

std::string withoutBrackets(std::string text) {
    if (text.starts_with('<')) {
        text.erase(0, 1);
    }
    if (text.ends_with('>')) {
        text.pop_back();
    }
    return text;
}

// GMime gives raw bytes in a name as they are in the mail.
std::string nameOf(const std::string& value) {
    return onOneLine(toUTF8(value, {}, false));
}

void readContentType(const MailField& field, MailPartHeader& header) {
    auto& part = header.part;
    const auto value = withUTF8Words(field.value);
    const GLibPointer<GMimeContentType> type(g_mime_content_type_parse(gmimeOptions(), value.c_str()));
    const auto parameter = [&](const char* name) {
        return textOf(g_mime_content_type_get_parameter(type.get(), name));
    };
    const GLibPointer<char> name(g_mime_content_type_get_mime_type(type.get()));
    part.mediaType = toASCIILower(onOneLine(textOf(name.get())));
    if (const auto token = trimmedToken(field.value); token.empty() || token == "text") {
        part.mediaType = "text/plain"; // as in mails before MIME
    }
    part.charset = onOneLine(parameter("charset"));
    part.name = nameOf(parameter("name"));
    part.root = withoutBrackets(onOneLine(parameter("start")));
    part.flowed = toASCIILower(parameter("format")) == "flowed";
    part.delSp = toASCIILower(parameter("delsp")) == "yes";
    if (part.mediaType.starts_with("multipart/")) {
        header.boundary = parameter("boundary");
        // Trailing blanks of a line are ignored, so a boundary cannot end with one.
        header.boundary.erase(header.boundary.find_last_not_of(" \t\r\n") + 1);
        if (header.boundary.empty()) {
            part.mediaType = "text/plain";
        }
    }
}

void readDisposition(const MailField& field, MailPart& part) {
    const auto value = withUTF8Words(field.value);
    const GLibPointer<GMimeContentDisposition> disposition(
        g_mime_content_disposition_parse(gmimeOptions(), value.c_str()));
    part.disposition =
        toASCIILower(onOneLine(textOf(g_mime_content_disposition_get_disposition(disposition.get()))));
    const auto name = nameOf(textOf(g_mime_content_disposition_get_parameter(disposition.get(), "filename")));
    if (!name.empty()) {
        part.name = name;
    }
}

} // namespace

bool isMultipart(const MailPart& part) {
    return part.mediaType.starts_with("multipart/");
}

bool isMessage(const MailPart& part) {
    return part.encoding == MailEncoding::identity &&
           (part.mediaType == "message/rfc822" || part.mediaType == "message/global" ||
            part.mediaType == "message/news");
}

MailPartHeader readPartHeader(const std::vector<MailField>& fields, bool inDigest) {
    MailPartHeader header;
    auto& part = header.part;
    if (const auto* type = findField(fields, "Content-Type")) {
        readContentType(*type, header);
    } else if (inDigest) {
        part.mediaType = "message/rfc822";
    }
    part.encoding = isMultipart(part) ? MailEncoding::identity : encodingOf(fields);
    if (const auto* disposition = findField(fields, "Content-Disposition")) {
        readDisposition(*disposition, part);
    }
    if (const auto* id = findField(fields, "Content-ID")) {
        part.contentID = withoutBrackets(onOneLine(id->value));
    }
    return header;
}

} // namespace zelto
