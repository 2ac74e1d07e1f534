#include <ZeltoIntegrations/OneNote/OneNoteNotebook.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(OneNoteSection, id, name, notebookId);
ZELTO_JSON_RECORD(OneNoteNotebook, id, name, sections);

} // namespace zelto
