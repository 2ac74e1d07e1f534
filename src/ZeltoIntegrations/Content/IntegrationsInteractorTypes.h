#pragma once

#include <Platform/Data.h>
#include <Platform/Enum.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

struct IntegrationsInteractorAddress {
    std::string email;
    std::optional<std::string> displayName;
    std::optional<std::string> firstName;
    std::optional<std::string> lastName;

    bool operator==(const IntegrationsInteractorAddress&) const = default;
};

struct IntegrationsInteractorAddresses {
    std::optional<IntegrationsInteractorAddress> from;
    std::optional<std::vector<IntegrationsInteractorAddress>> to;
    std::optional<std::vector<IntegrationsInteractorAddress>> cc;
    std::optional<std::vector<IntegrationsInteractorAddress>> bcc;

    bool operator==(const IntegrationsInteractorAddresses&) const = default;
};

// An attachment whose bytes are in memory.
struct IntegrationsInteractorAttachment {
    std::string name;
    std::string mimeType;
    Data data;

    bool operator==(const IntegrationsInteractorAttachment&) const = default;
};

// A body in Evernote's format with the inline attachments that it refers to.
struct IntegrationsInteractorEnml {
    std::string enml;
    std::vector<IntegrationsInteractorAttachment> inlineAttachments;

    bool operator==(const IntegrationsInteractorEnml&) const = default;
};

// What a body is asked for with. `skipInlineImages` leaves inline images out.
struct IntegrationExportHtmlOptions {
    std::optional<std::string> customHeader;
    std::optional<std::string> customTitle;
    std::optional<std::string> customFooter;
    bool skipInlineImages = false;

    bool operator==(const IntegrationExportHtmlOptions&) const = default;
};

// Which piece of a meeting note is asked for, and how it is written.
enum class IntegrationMeetingTranscriptContent : int { summary, transcript, notes };
ZELTO_ENUM(IntegrationMeetingTranscriptContent);

enum class IntegrationMeetingTranscriptFormat : int { text, html };
ZELTO_ENUM(IntegrationMeetingTranscriptFormat);

enum class DataInteractorFetchError : int { invalidBodyType, emptyExportBody };
ZELTO_ENUM(DataInteractorFetchError);

// Why an attachment did not reach a local file.
enum class AttachmentFetchError : int { unknownAttachment, sourceUnreadable, sourceChanged, cannotWriteFile };
ZELTO_ENUM(AttachmentFetchError);

enum class ImportActionType : int { downloadFile, goToFolder };
ZELTO_ENUM(ImportActionType);

} // namespace zelto
