#include <ZeltoIntegrations/TwoDo/TwoDoExporter.h>

#include <ZeltoIntegrations/Export/SchemeURL.h>

namespace zelto {

namespace {

constexpr auto posixLocale = "en_US_POSIX";

} // namespace

void TwoDoExporter::loadConfiguration(Completion<TwoDoConfiguration, IntegrationLoadError> completion) {
    completion(offeredConfiguration<TwoDoConfiguration>());
}

std::shared_ptr<ExportProgress> TwoDoExporter::export_(TwoDoConfiguration configuration,
                                                       Completion<void, IntegrationExportError> completion) {
    auto makeURL = [this, configuration](const Content& content) {
        SchemeURL url(std::string(urlHost) + "://x-callback-url/add");
        url.encoded("?task=", content.title).encoded("&note=", content.text);
        if (content.link && !content.link->empty()) {
            url.encoded("&action=url:", *content.link);
        }
        if (configuration.dueDate) {
            url.plain("&due=", formatted(*configuration.dueDate, "yyyy-MM-dd", posixLocale))
                .plain("&dueTime=", formatted(*configuration.dueDate, "HH:mm", posixLocale));
        }
        return url.text();
    };
    return exportURL(
        {.saveAs = configuration.saveAs, .userTitle = configuration.userTitle, .linkApart = true},
        std::move(makeURL), createResultMediator(configuration, std::move(completion)));
}

} // namespace zelto
