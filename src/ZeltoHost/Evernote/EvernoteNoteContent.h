#pragma once

#include <ZeltoIntegrations/Evernote/EvernoteAttachment.h>

#include <string>
#include <vector>

namespace zelto {

// The content of a note as Evernote takes it (ENML 2), made of a piece of HTML or of a whole ENML document:
// elements and attributes that ENML does not have are left out, and so are references to files that are not
// among the attachments. Attachments that nothing refers to are shown behind the text, each once.
//
// Accepts any bytes. Time is linear in the length. Any thread.
std::string evernoteNoteContent(std::string content, const std::vector<EvernoteAttachment>& attachments);

} // namespace zelto
