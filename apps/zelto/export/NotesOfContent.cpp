#include "export/NotesOfContent.h"

#include "base/Terminal.h"

#include <Platform/Text.h>

namespace zelto::cli {

void addNotes(JSONObject& members, const ContentNotes& notes) {
    JSONValue::Array described;
    for (const auto& note : notes.all()) {
        JSONObject one;
        one.set("kind", std::string(nameOf(note.kind)));
        one.set("message", note.message());
        described.emplace_back(std::move(one));
        writeError("zelto: warning: " + escapeControlCharacters(note.message()) + "\n");
    }
    if (!described.empty()) {
        members.set("notes", std::move(described));
    }
}

} // namespace zelto::cli
