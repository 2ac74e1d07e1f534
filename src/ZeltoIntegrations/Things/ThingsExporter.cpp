#include <ZeltoIntegrations/Things/ThingsExporter.h>

#include <ZeltoIntegrations/Export/SchemeURL.h>

namespace zelto {

namespace {

constexpr auto posixLocale = "en_US_POSIX";

} // namespace

void ThingsExporter::loadConfiguration(Completion<ThingsConfiguration, IntegrationLoadError> completion) {
    completion(offeredConfiguration<ThingsConfiguration>());
}

std::shared_ptr<ExportProgress> ThingsExporter::export_(ThingsConfiguration configuration,
                                                        Completion<void, IntegrationExportError> completion) {
    auto makeURL = [this, configuration](const Content& content) {
        SchemeURL url(std::string(urlHost) + ":add");
        url.encoded("?title=", content.title).encoded("&notes=", content.text);
        if (configuration.dueDate) {
            // The five y are meant: the year is padded to five digits.
            url.encoded("&when=", formatted(*configuration.dueDate, "yyyyy-MM-dd HH:mm", posixLocale));
        }
        if (configuration.deadline) {
            url.encoded("&deadline=", formatted(*configuration.deadline, "yyyy-MM-dd", posixLocale));
        }
        return url.text();
    };
    return exportURL({.saveAs = configuration.saveAs, .userTitle = configuration.userTitle},
                     std::move(makeURL), createResultMediator(configuration, std::move(completion)));
}

} // namespace zelto
