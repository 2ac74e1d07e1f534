#include <ZeltoIntegrations/Asana/AsanaWorkspace.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(AsanaProject, id, name, isPublic, isArchived);
ZELTO_JSON_RECORD(AsanaUser, id, name, email);
ZELTO_JSON_RECORD(AsanaWorkspace, id, name, projects, users);

} // namespace zelto
