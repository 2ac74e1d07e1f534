#include <ZeltoIntegrations/Evernote/EvernoteRecords.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(EvernoteUser, username, premium);
ZELTO_JSON_RECORD(EvernoteNotebook, id, name);
ZELTO_JSON_RECORD(EvernoteTag, id, name);
ZELTO_JSON_RECORD(EvernoteData, user, notebooks, tags);

} // namespace zelto
