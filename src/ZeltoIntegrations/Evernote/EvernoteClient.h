#pragma once

#include <ZeltoIntegrations/Client/CancellableServiceClient.h>
#include <ZeltoIntegrations/Evernote/EvernoteAttachment.h>
#include <ZeltoIntegrations/Evernote/EvernoteClientError.h>
#include <ZeltoIntegrations/Evernote/EvernoteRecords.h>

#include <Platform/Completion.h>

#include <string>
#include <vector>

namespace zelto {

// The way to one account of Evernote, which the host supplies (`evernoteClient` of its
// IntegrationsPlatformInteractorProtocol). Called from any thread; a completion comes once, on any thread, at
// once or later. What is cancelled ends with `connectionError`.
class EvernoteClient : public CancellableServiceClient {
  public:
    // The account's user, and what a note can be put into and tagged with.
    virtual void fetchData(Completion<EvernoteData, EvernoteClientError> completion) = 0;

    // Makes a note. `content` is a whole ENML document, which refers to some of the attachments by their MD5,
    // or a piece of HTML in which "&" may stand as itself: the client makes one note of either, and shows the
    // attachments that the content does not refer to behind it. `sourceUrl` is where the note comes from.
    virtual void createNote(std::string title, std::string content, EvernoteNotebook notebook,
                            std::vector<EvernoteTag> tags, std::vector<EvernoteAttachment> attachments,
                            std::string sourceUrl, Completion<void, EvernoteClientError> completion) = 0;
};

} // namespace zelto
