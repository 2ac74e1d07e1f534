#pragma once

#include <ZeltoIntegrations/Agenda/AgendaConfiguration.h>
#include <ZeltoIntegrations/Export/SchemeExporter.h>

namespace zelto {

// Makes a note in Agenda, in the project "Exported from Zelto", which is created if it does not exist.
class AgendaExporter final : public SchemeExporter {
  public:
    using SchemeExporter::SchemeExporter;

    using Configuration = AgendaConfiguration;

    static constexpr auto urlHost = "agenda";

    void loadConfiguration(Completion<AgendaConfiguration, IntegrationLoadError> completion);
    std::shared_ptr<ExportProgress> export_(AgendaConfiguration configuration,
                                            Completion<void, IntegrationExportError> completion);
};

} // namespace zelto
