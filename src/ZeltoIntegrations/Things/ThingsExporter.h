#pragma once

#include <ZeltoIntegrations/Export/SchemeExporter.h>
#include <ZeltoIntegrations/Things/ThingsConfiguration.h>

namespace zelto {

// Adds a to-do to Things.
class ThingsExporter final : public SchemeExporter {
  public:
    using SchemeExporter::SchemeExporter;

    using Configuration = ThingsConfiguration;

    static constexpr auto urlHost = "things";

    void loadConfiguration(Completion<ThingsConfiguration, IntegrationLoadError> completion);
    std::shared_ptr<ExportProgress> export_(ThingsConfiguration configuration,
                                            Completion<void, IntegrationExportError> completion);
};

} // namespace zelto
