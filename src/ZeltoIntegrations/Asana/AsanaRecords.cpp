#include <ZeltoIntegrations/Asana/AsanaRecords.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(AsanaProject, id, name, isPublic, isArchived);
ZELTO_JSON_RECORD(AsanaUser, id, name, email);
ZELTO_JSON_RECORD(AsanaWorkspace, id, name, projects, users);
ZELTO_JSON_RECORD(AsanaFullData, user, workspaces);
ZELTO_JSON_RECORD(AsanaTask, (ID, "gid"), name);
ZELTO_JSON_RECORD(AsanaSaveToInfo, workspace, project, user);

} // namespace zelto
