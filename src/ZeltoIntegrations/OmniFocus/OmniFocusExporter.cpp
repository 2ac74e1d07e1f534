#include <ZeltoIntegrations/OmniFocus/OmniFocusExporter.h>

#include <ZeltoIntegrations/Export/SchemeURL.h>

namespace zelto {

void OmniFocusExporter::loadConfiguration(
    Completion<OmniFocusConfiguration, IntegrationLoadError> completion) {
    completion(offeredConfiguration<OmniFocusConfiguration>());
}

std::shared_ptr<ExportProgress>
OmniFocusExporter::export_(OmniFocusConfiguration configuration,
                           Completion<void, IntegrationExportError> completion) {
    auto makeURL = [this, configuration](const Content& content) {
        SchemeURL url(std::string(urlHost) + ":///add");
        url.encoded("?name=", content.title).encoded("&note=", content.text).plain("&autosave=", "true");
        if (configuration.dueDate) {
            url.encoded("&due=", formatted(*configuration.dueDate, "yyyy, MMM, d, hh:mm a"));
        }
        return url.text();
    };
    return exportURL({.saveAs = configuration.saveAs, .userTitle = configuration.userTitle},
                     std::move(makeURL), createResultMediator(configuration, std::move(completion)));
}

} // namespace zelto
