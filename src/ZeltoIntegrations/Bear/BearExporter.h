#pragma once

#include <ZeltoIntegrations/Bear/BearExportConfiguration.h>
#include <ZeltoIntegrations/Export/SchemeExporter.h>

namespace zelto {

// Makes a note in Bear, with tags.
class BearExporter final : public SchemeExporter {
  public:
    using SchemeExporter::SchemeExporter;

    using Configuration = BearExportConfiguration;

    static constexpr auto urlHost = "bear";

    // The tags of the last export with this account.
    std::optional<std::vector<std::string>> lastExportTags() const;
    void setLastExportTags(const std::optional<std::vector<std::string>>& tags);

    void loadConfiguration(Completion<BearExportConfiguration, IntegrationLoadError> completion);
    std::shared_ptr<ExportProgress> export_(BearExportConfiguration configuration,
                                            Completion<void, IntegrationExportError> completion);
};

} // namespace zelto
