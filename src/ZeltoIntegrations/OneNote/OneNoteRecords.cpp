#include <ZeltoIntegrations/OneNote/OneNoteRecords.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(OneNoteUser, id, name, email);
ZELTO_JSON_RECORD(OneNoteSection, id, name, notebookId);
ZELTO_JSON_RECORD(OneNoteNotebook, id, name, sections);
ZELTO_JSON_RECORD(OneNoteFullData, user, notebooks);
ZELTO_JSON_RECORD(OneNoteSaveToInfo, notebook, section);

} // namespace zelto
