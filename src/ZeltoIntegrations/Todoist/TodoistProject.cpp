#include <ZeltoIntegrations/Todoist/TodoistProject.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(TodoistProject, id, name);

} // namespace zelto
