#pragma once

#include <Platform/Date.h>
#include <ZeltoIntegrations/Content/IntegrationsInteractorTypes.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

class MailFile;

// A mail beyond the limits of its structure is refused before anything is built. The message itself does not
// count as a part; depth is the number of containers (multiparts and attached messages) around a part;
// headers are added up over all parts.
struct MailLimits {
    std::size_t parts = 10'000;
    std::size_t headers = 10'000;
    std::size_t headerBytes = 1U << 20;
    std::size_t depth = 100;

    // Not refused, but cut and left out, with a note.
    std::size_t textBytes = 16U << 20;  // of the texts of the body together
    std::size_t imageBytes = 32U << 20; // of the inline images together
};

enum class MailEncoding : int { identity, base64, quotedPrintable, uuencode };

// A part of the tree. Texts are decoded, valid UTF-8; `begin` and `end` delimit the encoded content in the
// file.
struct MailPart {
    std::string mediaType = "text/plain"; // lower case, without parameters
    std::string charset;                  // as declared, or empty
    std::string disposition;              // lower case: "inline", "attachment" or empty
    std::string name;                     // as in the mail; must be cleaned before it is used as a file name
    std::string contentID;                // without angle brackets
    std::string root;                     // of a multipart/related: the content id of its root, or empty
    MailEncoding encoding = MailEncoding::identity;
    bool flowed = false; // RFC 3676: soft line breaks
    bool delSp = false;
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    std::vector<std::size_t> children; // indexes into MailMessage::parts
};

// A section of the body: the parts that give it as plain text and as HTML, in order. If one of the two is
// empty, the other is converted.
struct MailBodySection {
    std::vector<std::size_t> plain;
    std::vector<std::size_t> html;
};

struct MailAttachment {
    std::int64_t id;  // from 1, in the order of the mail
    std::string name; // clean: usable as a file name
    std::string mediaType;
    std::size_t part;
};

// An image that the HTML body refers to by a "cid:" URL with its content id.
struct MailInlineImage {
    std::string contentID;
    std::string name; // clean
    std::string mediaType;
    std::size_t part;
};

// The structure and header of a mail; a regular value without any content, which stays in the file.
struct MailMessage {
    std::optional<IntegrationsInteractorAddress> from;
    std::vector<IntegrationsInteractorAddress> to;
    std::vector<IntegrationsInteractorAddress> cc;
    std::vector<IntegrationsInteractorAddress> bcc;
    std::optional<std::string> subject;
    std::optional<std::string> messageID;   // without angle brackets
    std::optional<std::string> deliveredTo; // the address that the last server delivered to
    std::optional<Date> sentDate;
    std::optional<Date> receivedDate;

    std::vector<MailPart> parts; // the first is the message's own
    std::vector<MailBodySection> body;
    std::vector<MailAttachment> attachments;
    std::vector<MailInlineImage> inlineImages;

    std::shared_ptr<const MailFile> file;
    MailLimits limits;

    const MailAttachment* attachment(std::int64_t id) const;
};

} // namespace zelto
