#include <ZeltoIntegrations/Agenda/AgendaExporter.h>

#include <ZeltoIntegrations/Export/SchemeURL.h>

namespace zelto {

namespace {

constexpr auto projectName = "Exported from Zelto";

std::string action(std::string_view name) {
    return std::string(AgendaExporter::urlHost) + "://x-callback-url/" + std::string(name);
}

// A chain of three URLs, each a parameter of the next: opening the project makes the note; if there is no
// such project, the error route creates it and then the note.
ExporterResult<std::string> chainedURL(const std::string& title, const std::string& text) {
    const auto note =
        SchemeURL(action("create-note")).encoded("?title=", title).encoded("&text=", text).text();
    if (!note) {
        return note;
    }
    const auto create = SchemeURL(action("create-project"))
                            .encoded("?title=", projectName)
                            .encoded("&x-success=", *note)
                            .text();
    if (!create) {
        return create;
    }
    return SchemeURL(action("open-project"))
        .encoded("?title=", projectName)
        .encoded("&x-success=", *note)
        .encoded("&x-error=", *create)
        .text();
}

} // namespace

void AgendaExporter::loadConfiguration(Completion<AgendaConfiguration, IntegrationLoadError> completion) {
    completion(offeredConfiguration<AgendaConfiguration>());
}

std::shared_ptr<ExportProgress> AgendaExporter::export_(AgendaConfiguration configuration,
                                                        Completion<void, IntegrationExportError> completion) {
    return exportURL(
        {.saveAs = configuration.saveAs,
         .userTitle = configuration.userTitle,
         .userNote = configuration.userNote},
        [](const Content& content) { return chainedURL(content.title, content.text); },
        createResultMediator(configuration, std::move(completion)));
}

} // namespace zelto
