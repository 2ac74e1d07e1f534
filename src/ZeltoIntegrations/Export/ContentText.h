#pragma once

#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Content/IntegrationLink.h>
#include <ZeltoIntegrations/Content/IntegrationsDataInteractorProtocol.h>

#include <Platform/Completion.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace zelto {

// Who may open the web link in an exported text.
struct WebLinkSettings {
    IntegrationWebLinkVisibility visibility = IntegrationWebLinkVisibility::onlyMe;
    std::optional<std::uint64_t> teamId;

    bool operator==(const WebLinkSettings&) const = default;
};

// A row of a service's table: which text an export of that type has, and which link to the message it
// carries.
struct ContentText {
    enum class Source { messagePlainText, meetingSummary, link };
    enum class Link { backlink, altBacklink, safeBacklink, webLink };

    IntegrationExportContentType type;
    Source source;
    Link link;
    IntegrationLinkFormat format;
};

// The types of the services that take the message's text with a link to it, or the link alone.
IntegrationExportContentTypes textContentTypes(IntegrationExportTarget target);

// The rows of those types: a service chooses its links' format, and which link a text carries that has the
// plain one.
constexpr std::array<ContentText, 6> textContents(ContentText::Link linkOfText,
                                                  IntegrationLinkFormat format) {
    using enum IntegrationExportContentType;
    using Source = ContentText::Source;
    using Link = ContentText::Link;
    return {{{emailBacklink, Source::messagePlainText, linkOfText, format},
             {emailWeblink, Source::messagePlainText, Link::webLink, format},
             {mtSummaryBacklink, Source::meetingSummary, linkOfText, format},
             {mtSummaryWeblink, Source::meetingSummary, Link::webLink, format},
             {backLink, Source::link, Link::backlink, format},
             {webLink, Source::link, Link::webLink, format}}};
}

// The row of that type; null for a type that the service does not take.
const ContentText* contentTextFor(IntegrationExportContentType type, std::span<const ContentText> rows);

// The link that the row's text carries.
IntegrationLinkType linkTypeOf(const ContentText& row, const WebLinkSettings& settings);

// Asks the host for the row's text; no value where it has none.
void loadText(IntegrationsDataInteractorProtocol& dataInteractor, const ContentText& row,
              const WebLinkSettings& settings, Callback<std::optional<std::string>> completion);

// The same as a preview: a link as such, with its plain address, and all else as the body of a mail. No value
// for a type without a row.
void loadTextPreview(IntegrationsDataInteractorProtocol& dataInteractor, IntegrationExportContentType type,
                     std::span<const ContentText> rows, const WebLinkSettings& settings,
                     Callback<std::optional<IntegrationExportPreview>> completion);

} // namespace zelto
