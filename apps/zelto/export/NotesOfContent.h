#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoHost/Content/ContentNotes.h>

namespace zelto::cli {

// Warns on standard error of what the export does not show of the message, and adds it as the member "notes".
void addNotes(JSONObject& members, const ContentNotes& notes);

} // namespace zelto::cli
