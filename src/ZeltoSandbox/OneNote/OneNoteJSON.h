#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/OneNote/OneNoteStore.h>

namespace zelto::sandbox {

// Microsoft Graph's own JSON of its records.
JSONObject oneNoteUserJSON(const OneNoteUserRecord& user);
JSONObject oneNoteNotebookJSON(const OneNoteNotebookRecord& notebook);
JSONObject oneNoteSectionJSON(const OneNoteSectionRecord& section, const OneNoteNotebookRecord& notebook);
JSONObject oneNotePageJSON(const OneNotePageRecord& page);

// What the page of the sandbox shows: the notebooks with their sections and the pages of these.
JSONObject oneNoteState(const OneNoteStore& store);

} // namespace zelto::sandbox
