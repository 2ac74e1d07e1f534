#pragma once

#include <ZeltoIntegrations/Evernote/EvernoteAttachment.h>
#include <ZeltoIntegrations/Evernote/EvernoteRecords.h>

#include <Platform/Date.h>
#include <Platform/FileError.h>
#include <Platform/Result.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// One note of a file that Evernote imports (".enex").
struct EvernoteImportNote {
    std::string title;
    std::string content; // ENML
    Date created;
    EvernoteNotebook notebook;
    std::vector<EvernoteTag> tags;
    std::string sourceUrl;
    std::vector<EvernoteAttachment> attachments;
};

// Gives the file piece by piece to `write`, up to its first failure, which is returned. A piece is no longer
// than the content or 256 KiB. Titles and tags are what Evernote takes: one line, trimmed, of 255 and of 100
// characters at most, without commas in a tag; "Untitled" stands where nothing is left of a title, and an
// empty tag is left out. So is an address of more than 4,096 characters, and so are characters that XML does
// not allow. An import file knows no notebooks: the notebook's name is data of the note for programs.
Result<void, FileError>
writeEvernoteImportFile(const EvernoteImportNote& note,
                        const std::function<Result<void, FileError>(std::string_view)>& write);

} // namespace zelto
