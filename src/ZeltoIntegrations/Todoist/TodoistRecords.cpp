#include <ZeltoIntegrations/Todoist/TodoistRecords.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(TodoistProject, id, name);
ZELTO_JSON_RECORD(TodoistUser, email, (isPremium, "is_premium"), (premiumUntil, "premium_until"));
ZELTO_JSON_RECORD(TodoistFullData, user, projects);
ZELTO_JSON_RECORD(TodoistSaveToInfo, project);

} // namespace zelto
