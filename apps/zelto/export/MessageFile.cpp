#include "export/MessageFile.h"

#include "base/Interruption.h"

#include <ZeltoHost/Mail/MailDataInteractor.h>
#include <ZeltoHost/Mail/MailReader.h>
#include <ZeltoHost/MeetingNote/MeetingNoteDataInteractor.h>
#include <ZeltoHost/MeetingNote/MeetingNoteReader.h>

#include <unistd.h>

namespace zelto::cli {

namespace {

using Interactor = std::shared_ptr<IntegrationsDataInteractorProtocol>;

Failure mailFailure(const std::string& name, MailError error) {
    if (error == MailError::canceled) {
        return {std::string(nameOf(error)),
                "The reading of " + name + " was canceled.",
                {},
                ExitStatus::interrupted};
    }
    return {std::string(nameOf(error)), name + ": " + std::string(messageOf(error)), {}};
}

Outcome<Interactor> openMail(const std::string& name, InteractorOptions options) {
    std::filesystem::path path = name;
    if (name == "-") {
        const Interruption interruption;
        const auto spooled = spool(STDIN_FILENO, interruption.stop());
        if (!spooled) {
            return failure(mailFailure("standard input", spooled.error()));
        }
        path = *spooled;
    }
    const auto message = MailReader::open(path);
    if (!message) {
        return failure(mailFailure(name == "-" ? "standard input" : name, message.error()));
    }
    return std::make_shared<MailDataInteractor>(*message, std::move(options));
}

Outcome<Interactor> openNote(const std::string& name, InteractorOptions options) {
    auto note = MeetingNoteReader::open(name);
    if (!note) {
        return failure(
            Failure{std::string(nameOf(note.error().code)), name + ": " + note.error().message, {}});
    }
    return std::make_shared<MeetingNoteDataInteractor>(*std::move(note), std::move(options));
}

} // namespace

Outcome<Interactor> openMessage(const Invocation& invocation, std::shared_ptr<ContentNotes> notes) {
    InteractorOptions options;
    options.notes = std::move(notes);
    if (const auto link = invocation.value("--web-link")) {
        options.webLink = URL::parse(*link);
        if (!options.webLink) {
            return wrongUsage("--web-link is no URL: " + *link + ".");
        }
    }
    const auto name = invocation.value("MAIL").value();
    return name.ends_with(".json") ? openNote(name, std::move(options)) : openMail(name, std::move(options));
}

} // namespace zelto::cli
