#include <ZeltoIntegrations/Export/ContentText.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace zelto {

namespace {

std::optional<IntegrationExportPreview> previewOf(const ContentText& row, std::optional<std::string> text) {
    if (!text) {
        return std::nullopt;
    }
    if (row.source != ContentText::Source::link) {
        return IntegrationExportPreview::email(*std::move(text));
    }
    return row.link == ContentText::Link::webLink ? IntegrationExportPreview::webLink(*std::move(text))
                                                  : IntegrationExportPreview::backLink(*std::move(text));
}

} // namespace

IntegrationExportContentTypes textContentTypes(IntegrationExportTarget target) {
    using enum IntegrationExportContentType;
    switch (target) {
    case IntegrationExportTarget::email:
        return {emailWeblink, {emailBacklink, emailWeblink, backLink, webLink}};
    case IntegrationExportTarget::meetingNote:
        return {mtSummaryWeblink, {mtSummaryBacklink, mtSummaryWeblink, backLink, webLink}};
    }
    return {emailWeblink, {}};
}

const ContentText* contentTextFor(IntegrationExportContentType type, std::span<const ContentText> rows) {
    const auto row = std::ranges::find(rows, type, &ContentText::type);
    return row == rows.end() ? nullptr : &*row;
}

IntegrationLinkType linkTypeOf(const ContentText& row, const WebLinkSettings& settings) {
    switch (row.link) {
    case ContentText::Link::backlink:
        return IntegrationLinkType::backlink(row.format);
    case ContentText::Link::altBacklink:
        return IntegrationLinkType::altBacklink(row.format);
    case ContentText::Link::safeBacklink:
        return IntegrationLinkType::safeBacklink(row.format);
    case ContentText::Link::webLink:
        return IntegrationLinkType::webLink(row.format, settings.visibility, settings.teamId);
    }
    std::fputs("Unexpected linkUsage\n", stderr);
    std::abort();
}

void loadText(IntegrationsDataInteractorProtocol& dataInteractor, const ContentText& row,
              const WebLinkSettings& settings, Callback<std::optional<std::string>> completion) {
    const auto link = linkTypeOf(row, settings);
    switch (row.source) {
    case ContentText::Source::messagePlainText:
        return dataInteractor.messagePlainText(link, std::move(completion));
    case ContentText::Source::meetingSummary:
        return dataInteractor.meetTranscript(IntegrationMeetingTranscriptContent::summary,
                                             IntegrationMeetingTranscriptFormat::text, link,
                                             std::move(completion));
    case ContentText::Source::link:
        return dataInteractor.link(link, std::move(completion));
    }
}

void loadTextPreview(IntegrationsDataInteractorProtocol& dataInteractor, IntegrationExportContentType type,
                     std::span<const ContentText> rows, const WebLinkSettings& settings,
                     Callback<std::optional<IntegrationExportPreview>> completion) {
    const auto* found = contentTextFor(type, rows);
    if (!found) {
        return completion(std::nullopt);
    }
    auto row = *found;
    if (row.source == ContentText::Source::link) {
        row.format = IntegrationLinkFormat::raw;
    }
    loadText(dataInteractor, row, settings,
             [row, completion = std::move(completion)](std::optional<std::string> text) mutable {
                 completion(previewOf(row, std::move(text)));
             });
}

} // namespace zelto
