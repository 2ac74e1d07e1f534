#pragma once

#include <ZeltoIntegrations/Export/SchemeExporter.h>
#include <ZeltoIntegrations/OmniFocus/OmniFocusConfiguration.h>

namespace zelto {

// Adds a task to the inbox of OmniFocus.
class OmniFocusExporter final : public SchemeExporter {
  public:
    using SchemeExporter::SchemeExporter;

    using Configuration = OmniFocusConfiguration;

    static constexpr auto urlHost = "omnifocus";

    void loadConfiguration(Completion<OmniFocusConfiguration, IntegrationLoadError> completion);
    std::shared_ptr<ExportProgress> export_(OmniFocusConfiguration configuration,
                                            Completion<void, IntegrationExportError> completion);
};

} // namespace zelto
