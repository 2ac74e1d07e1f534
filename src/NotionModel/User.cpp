#include <NotionModel/User.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace notion {

ZELTO_JSON_RECORD(Person, email);
ZELTO_JSON_RECORD(OwningUser, id, name, person);
ZELTO_JSON_RECORD(BotOwner, type, user);
ZELTO_JSON_RECORD(Bot, owner);
ZELTO_JSON_RECORD(User, id, type, name, person, bot);

} // namespace notion
