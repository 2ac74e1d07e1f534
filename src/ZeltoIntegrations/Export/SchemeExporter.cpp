#include <ZeltoIntegrations/Export/SchemeExporter.h>

#include <utility>

namespace zelto {

namespace {

constexpr auto noteSeparator = "\n------------------\n\n";
constexpr auto stepCount = 3;

const auto plainBacklink = IntegrationLinkType::backlink(IntegrationLinkFormat::raw);

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
    const auto makeText = textMakerFor(type);
    if (!makeText) {
        return completion(std::nullopt);
    }
    (this->*makeText)([type, completion = std::move(completion)](std::optional<std::string> text) mutable {
        if (!text) {
            completion(std::nullopt);
        } else if (type == IntegrationExportContentType::backLink) {
            completion(IntegrationExportPreview::backLink(*std::move(text)));
        } else {
            completion(IntegrationExportPreview::email(*std::move(text)));
        }
    });
}

std::shared_ptr<ExportProgress> SchemeExporter::exportURL(Request request, URLMaker makeURL,
                                                          ResultMediator<void> finish) {
    if (!textMakerFor(request.saveAs)) {
        return refuseFormat(0, finish);
    }
    const auto progress = std::make_shared<ExportProgress>(stepCount);

    const auto content = createAsyncTask<ExporterResult<Content>>(
        [self = self(), request = std::move(request), progress, finish](auto done) {
            self->makeContent(request, [self, progress, finish, done = std::move(done)](auto made) mutable {
                self->update(*progress, finish);
                done(std::move(made));
            });
        });

    const auto url = createAsyncTask<ExporterResult<URL>>(
        [self = self(), content, makeURL = std::move(makeURL), progress, finish](auto done) {
            auto made = [&]() -> ExporterResult<URL> {
                const auto given = resultOf(content);
                if (!given) {
                    return failure(given.error());
                }
                const auto text = makeURL(*given);
                if (!text) {
                    return failure(text.error());
                }
                auto parsed = URL::parse(*text);
                if (!parsed) {
                    return failure(IntegrationExportError::createUrlError);
                }
                return *std::move(parsed);
            }();
            self->update(*progress, finish);
            done(std::move(made));
        });

    const auto open = createAsyncTask<ExporterResult<void>>([self = self(), url, progress,
                                                             finish](auto done) {
        auto close = [self, progress, finish, done = std::move(done)](ExporterResult<void> result) mutable {
            if (self->update(*progress, finish)) {
                finish(result);
            }
            done(result);
        };
        const auto made = resultOf(url);
        if (!made) {
            return close(failure(made.error()));
        }
        try {
            self->platformInteractor().executeAction(*made, [close = std::move(close)](bool opened) mutable {
                close(opened ? ExporterResult<void>() : failure(IntegrationExportError::xUrlCallbackError));
            });
        } catch (...) {
            // No step comes after this one that would report.
            finish(failure(IntegrationExportError::xUrlCallbackError));
            throw;
        }
    });

    execute({content, url, open});
    return progress;
}

void SchemeExporter::makeContent(const Request& request, Callback<ExporterResult<Content>> completion) {
    Content content;
    content.title = titleOr(request.userTitle);

    auto withText = [self = self(), content, linkApart = request.linkApart, note = request.userNote,
                     completion = std::move(completion)](std::optional<std::string> text) mutable {
        if (!text) {
            return completion(failure(IntegrationExportError::createBodyError));
        }
        content.text =
            ExportServiceHelper::isNotEmpty(note) ? *note + noteSeparator + *text : *std::move(text);
        if (!linkApart) {
            return completion(std::move(content));
        }
        self->linkText([content = std::move(content), completion = std::move(completion)](auto link) mutable {
            content.link = std::move(link);
            completion(std::move(content));
        });
    };
    (this->*textMakerFor(request.saveAs))(std::move(withText));
}

std::string SchemeExporter::formatted(Date date, const std::string& format,
                                      const std::optional<std::string>& localeName) const {
    const auto formatter = platformInteractor().dateFormatter();
    return localeName ? formatter->string(date, format, *localeName) : formatter->string(date, format);
}

SchemeExporter::TextMaker SchemeExporter::textMakerFor(IntegrationExportContentType type) {
    using enum IntegrationExportContentType;
    switch (type) {
    case emailBacklink:
        return &SchemeExporter::plainText;
    case backLink:
        return &SchemeExporter::linkText;
    case mtSummaryBacklink:
        return &SchemeExporter::meetingNoteSummary;
    case pdf:
    case webLink:
    case externalLink:
    case IntegrationExportContentType::plainText:
    case attachment:
    case mtSummaryWeblink:
    case emailWeblink:
        return nullptr;
    }
    return nullptr;
}

void SchemeExporter::plainText(Callback<std::optional<std::string>> completion) {
    dataInteractor().messagePlainText(plainBacklink, std::move(completion));
}

void SchemeExporter::linkText(Callback<std::optional<std::string>> completion) {
    dataInteractor().link(plainBacklink, std::move(completion));
}

void SchemeExporter::meetingNoteSummary(Callback<std::optional<std::string>> completion) {
    dataInteractor().meetTranscript(IntegrationMeetingTranscriptContent::summary,
                                    IntegrationMeetingTranscriptFormat::text, plainBacklink,
                                    std::move(completion));
}

std::shared_ptr<SchemeExporter> SchemeExporter::self() {
    return std::static_pointer_cast<SchemeExporter>(shared_from_this());
}

} // namespace zelto
