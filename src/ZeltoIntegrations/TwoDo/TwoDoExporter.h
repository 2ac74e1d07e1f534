#pragma once

#include <ZeltoIntegrations/Export/SchemeExporter.h>
#include <ZeltoIntegrations/TwoDo/TwoDoConfiguration.h>

namespace zelto {

// Adds a task to 2Do, with the link to the message as its action.
class TwoDoExporter final : public SchemeExporter {
  public:
    using SchemeExporter::SchemeExporter;

    using Configuration = TwoDoConfiguration;

    static constexpr auto urlHost = "twodo";

    void loadConfiguration(Completion<TwoDoConfiguration, IntegrationLoadError> completion);
    std::shared_ptr<ExportProgress> export_(TwoDoConfiguration configuration,
                                            Completion<void, IntegrationExportError> completion);
};

} // namespace zelto
