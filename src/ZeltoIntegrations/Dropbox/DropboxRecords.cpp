#include <ZeltoIntegrations/Dropbox/DropboxRecords.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(DropboxUser, email);
ZELTO_JSON_RECORD(DropboxMetadata, (tag, ".tag"), name, path_lower, id);

} // namespace zelto
