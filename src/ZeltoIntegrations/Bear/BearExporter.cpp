#include <ZeltoIntegrations/Bear/BearExporter.h>

#include <ZeltoIntegrations/Export/SchemeURL.h>

#include <Platform/Joined.h>

namespace zelto {

namespace {

constexpr auto lastExportTagsKey = "lastExportTags";

} // namespace

std::optional<std::vector<std::string>> BearExporter::lastExportTags() const {
    return getCachedValue<std::vector<std::string>>(lastExportTagsKey);
}

void BearExporter::setLastExportTags(const std::optional<std::vector<std::string>>& tags) {
    setCachedValue(tags, lastExportTagsKey);
}

void BearExporter::loadConfiguration(Completion<BearExportConfiguration, IntegrationLoadError> completion) {
    completion(offeredConfiguration<BearExportConfiguration>());
}

std::shared_ptr<ExportProgress> BearExporter::export_(BearExportConfiguration configuration,
                                                      Completion<void, IntegrationExportError> completion) {
    auto makeURL = [configuration](const Content& content) {
        SchemeURL url(std::string(urlHost) + "://x-callback-url/create");
        url.encoded("?title=", content.title).encoded("&text=", content.text);
        if (!configuration.tags.empty()) {
            // The joined tags are not encoded: a tag with a blank makes no URL.
            url.plain("&tags=", joined(configuration.tags, ","));
        }
        return url.text();
    };
    return exportURL({.saveAs = configuration.saveAs,
                      .userTitle = configuration.userTitle,
                      .userNote = configuration.userNote},
                     std::move(makeURL), createResultMediator(configuration, std::move(completion)));
}

} // namespace zelto
