#pragma once

#include <Platform/Enum.h>

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zelto {

// The form in which a mail or a meeting note goes to a service. Coded as its number.
enum class IntegrationExportContentType : int {
    pdf = 0,
    emailBacklink = 1,
    backLink = 2,
    webLink = 3,
    externalLink = 4,
    plainText = 5,
    attachment = 6,
    mtSummaryWeblink = 7,
    mtSummaryBacklink = 8,
    emailWeblink = 9,
};
ZELTO_ENUM(IntegrationExportContentType);

// The kind of link that an exported text carries.
enum class IntegrationExportUsedLink : int { backlink = 0, weblink = 1, externalLink = 2 };
ZELTO_ENUM(IntegrationExportUsedLink);

std::optional<IntegrationExportUsedLink> linkUsage(IntegrationExportContentType type);

enum class IntegrationExportTarget : int { email, meetingNote };
ZELTO_ENUM(IntegrationExportTarget);

// What a file service does when a file of that name exists.
enum class ExportFilePolicy : int { keepBoth, overrideExisting };
ZELTO_ENUM(ExportFilePolicy);

struct IntegrationExportContentTypes {
    IntegrationExportContentType default_;
    std::vector<IntegrationExportContentType> supported;

    bool operator==(const IntegrationExportContentTypes&) const = default;
};

// What the host shows of an export before it is made.
struct IntegrationExportPreview {
    struct Pdf {
        std::string name;
        bool operator==(const Pdf&) const = default;
    };

    struct Email {
        std::string body;
        bool operator==(const Email&) const = default;
    };

    struct BackLink {
        std::string url;
        bool operator==(const BackLink&) const = default;
    };

    struct WebLink {
        std::string url;
        bool operator==(const WebLink&) const = default;
    };

    struct ExternalLink {
        bool operator==(const ExternalLink&) const = default;
    };

    std::variant<Pdf, Email, BackLink, WebLink, ExternalLink> value;

    static IntegrationExportPreview pdf(std::string name) { return {Pdf{std::move(name)}}; }

    static IntegrationExportPreview email(std::string body) { return {Email{std::move(body)}}; }

    static IntegrationExportPreview backLink(std::string url) { return {BackLink{std::move(url)}}; }

    static IntegrationExportPreview webLink(std::string url) { return {WebLink{std::move(url)}}; }

    static IntegrationExportPreview externalLink() { return {ExternalLink{}}; }

    bool operator==(const IntegrationExportPreview&) const = default;
};

} // namespace zelto
