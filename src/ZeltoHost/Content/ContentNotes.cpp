#include <ZeltoHost/Content/ContentNotes.h>

#include <algorithm>

namespace zelto {

void ContentNotes::add(ContentNote note) {
    notes_.modify([&](std::vector<ContentNote>& notes) {
        if (std::ranges::find(notes, note) == notes.end()) {
            notes.push_back(std::move(note));
        }
    });
}

} // namespace zelto
