#include <ZeltoIntegrations/Export/SchemeExporter.h>

#include <utility>

namespace zelto {

namespace {

constexpr auto noteSeparator = "\n------------------\n\n";
constexpr auto stepCount = 3;

constexpr auto raw = IntegrationLinkFormat::raw;

constexpr ContentText linkText = {IntegrationExportContentType::backLink, ContentText::Source::link,
                                  ContentText::Link::backlink, raw};

// What each type sends. The target plays no part.
constexpr ContentText texts[] = {
    {IntegrationExportContentType::emailBacklink, ContentText::Source::messagePlainText,
     ContentText::Link::backlink, raw},
    {IntegrationExportContentType::mtSummaryBacklink, ContentText::Source::meetingSummary,
     ContentText::Link::backlink, raw},
    linkText,
};

} // namespace

IntegrationExportContentTypes SchemeExporter::contentTypes(IntegrationExportTarget target) const {
    using enum IntegrationExportContentType;
    switch (target) {
    case IntegrationExportTarget::email:
        return {emailBacklink, {emailBacklink, backLink}};
    case IntegrationExportTarget::meetingNote:
        return {mtSummaryBacklink, {mtSummaryBacklink, backLink}};
    }
    return {emailBacklink, {}};
}

void SchemeExporter::loadPreview(IntegrationExportContentType type,
                                 Callback<std::optional<IntegrationExportPreview>> completion) {
    loadTextPreview(dataInteractor(), type, texts, {}, std::move(completion));
}

std::shared_ptr<ExportProgress> SchemeExporter::exportURL(Request request, URLMaker makeURL,
                                                          ResultMediator<void> finish) {
    if (!contentTextFor(request.saveAs, texts)) {
        return refuseFormat(0, finish);
    }
    auto steps = exportSteps(FailureRule::stop, stepCount, std::move(finish));
    const auto content = steps.add<Content>(&SchemeExporter::makeContent, std::move(request));
    const auto url = steps.add<URL>(&SchemeExporter::makeURL, content, std::move(makeURL));
    steps.add<void>(&SchemeExporter::open, url);
    return steps.execute();
}

void SchemeExporter::makeContent(StepRun& run, const Request& request, StepCompletion<Content> done) {
    Content content;
    content.title = titleOr(request.userTitle);
    loadText(dataInteractor(), *contentTextFor(request.saveAs, texts), {},
             [this, &run, content = std::move(content), note = request.userNote,
              linkApart = request.linkApart,
              done = std::move(done)](std::optional<std::string> text) mutable {
                 if (!text) {
                     return done(failure(IntegrationExportError::createBodyError));
                 }
                 content.text =
                     ExportServiceHelper::isNotEmpty(note) ? *note + noteSeparator + *text : *std::move(text);
                 if (!linkApart || run.isCancelled()) {
                     return done(std::move(content));
                 }
                 addLink(std::move(content), std::move(done));
             });
}

void SchemeExporter::addLink(Content content, StepCompletion<Content> done) {
    loadText(dataInteractor(), linkText, {},
             [content = std::move(content), done = std::move(done)](auto link) mutable {
                 content.link = std::move(link);
                 done(std::move(content));
             });
}

void SchemeExporter::makeURL(StepRun&, const Step<Content>& content, const URLMaker& maker,
                             StepCompletion<URL> done) {
    const auto text = maker(*resultOf(content));
    if (!text) {
        return done(failure(text.error()));
    }
    auto url = URL::parse(*text);
    done(url ? ExporterResult<URL>(*std::move(url)) : failure(IntegrationExportError::createUrlError));
}

void SchemeExporter::open(StepRun&, const Step<URL>& url, StepCompletion<void> done) {
    platformInteractor().executeAction(*resultOf(url), [done = std::move(done)](bool isOpened) mutable {
        done(isOpened ? ExporterResult<void>() : failure(IntegrationExportError::xUrlCallbackError));
    });
}

std::string SchemeExporter::formatted(Date date, const std::string& format,
                                      const std::optional<std::string>& localeName) const {
    const auto formatter = platformInteractor().dateFormatter();
    return localeName ? formatter->string(date, format, *localeName) : formatter->string(date, format);
}

} // namespace zelto
