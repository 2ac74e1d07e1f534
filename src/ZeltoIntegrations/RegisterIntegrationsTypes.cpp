#include <ZeltoIntegrations/RegisterIntegrationsTypes.h>

#include <ZeltoIntegrations/Asana/AsanaRecords.h>
#include <ZeltoIntegrations/OneNote/OneNoteRecords.h>
#include <ZeltoIntegrations/Todoist/TodoistRecords.h>

#include <TrovenhalCommon/AnyCodable.h>

namespace zelto {

void RegisterIntegrationsTypes() {
    AnyCodable::RegisterType<AsanaWorkspace>("AsanaWorkspace");
    AnyCodable::RegisterType<AsanaProject>("AsanaProject");
    AnyCodable::RegisterType<AsanaUser>("AsanaUser");
    AnyCodable::RegisterType<OneNoteNotebook>("OneNoteNotebook");
    AnyCodable::RegisterType<OneNoteSection>("OneNoteSection");
    AnyCodable::RegisterType<TodoistProject>("TodoistProject");
}

} // namespace zelto
