#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>

#include <Platform/EnumDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(IntegrationExportContentType, pdf, emailBacklink, backLink, webLink, externalLink,
                    plainText, attachment, mtSummaryWeblink, mtSummaryBacklink, emailWeblink);
ZELTO_DESCRIBE_ENUM(IntegrationExportUsedLink, backlink, weblink, externalLink);
ZELTO_DESCRIBE_ENUM(IntegrationExportTarget, email, meetingNote);
ZELTO_DESCRIBE_ENUM(ExportFilePolicy, keepBoth, overrideExisting);

std::optional<IntegrationExportUsedLink> linkUsage(IntegrationExportContentType type) {
    using enum IntegrationExportContentType;
    switch (type) {
    case emailBacklink:
    case backLink:
    case mtSummaryBacklink:
        return IntegrationExportUsedLink::backlink;
    case webLink:
    case mtSummaryWeblink:
    case emailWeblink:
        return IntegrationExportUsedLink::weblink;
    case externalLink:
        return IntegrationExportUsedLink::externalLink;
    case pdf:
    case plainText:
    case attachment:
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace zelto
