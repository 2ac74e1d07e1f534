#include <ZeltoIntegrations/Hubspot/HubspotExporter.h>

#include <ZeltoIntegrations/Client/Joining.h>
#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>
#include <ZeltoIntegrations/Hubspot/HubspotAuthoriser.h>
#include <ZeltoIntegrations/Hubspot/HubspotClient.h>
#include <ZeltoIntegrations/Hubspot/HubspotContacts.h>
#include <ZeltoIntegrations/Hubspot/HubspotObjects.h>

#include <TrovenhalCommon/SkippableAssert.h>

#include <unordered_set>
#include <utility>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using ExportError = IntegrationExportError;
using Meeting = IntegrationMeetingTranscriptContent;

constexpr auto text = IntegrationMeetingTranscriptFormat::text;

constexpr auto emailKind = "email";
constexpr auto noteKind = "note";
constexpr auto meetingKind = "meeting";

constexpr std::size_t emailSteps = 4;
constexpr std::size_t noteSteps = 4;
constexpr std::size_t noteAndMeetingSteps = 6;

// The service has fields of its own for what a header shows, and takes no attachments.
IntegrationExportHtmlOptions emailHtml() {
    return {.customHeader = "",
            .customTitle = std::nullopt,
            .customFooter = hubspotFooter(),
            .skipInlineImages = true};
}

} // namespace

// A party of the message on its way to a contact.
struct HubspotExporter::Contact {
    HubspotPayloadCreateContact payload;
    std::string id = {};                         // once it is known
    std::size_t place = 0;                       // of its creation in the report
    std::optional<ServiceRefusal> conflict = {}; // why it was not created

    const std::string& email() const { return payload.properties.email; }

    Making making(std::string_view warning, std::string_view function) const {
        return {.kind = "contact",
                .name = email(),
                .error = std::nullopt,
                .warning = warning,
                .function = function};
    }

    Making finding() const {
        return making("Hubspot finding contact error: ", "findContact(address:updateProgress:)");
    }

    Making creating() const {
        return making("Hubspot creation contact error: ", "createContact(address:updateProgress:)");
    }
};

void HubspotExporter::loadConfiguration(
    Completion<HubspotExportConfiguration, IntegrationLoadError> completion) {
    completion(offered());
}

HubspotExportConfiguration HubspotExporter::offered() const {
    const auto target = exportTarget();
    const auto types = contentTypes(target);
    HubspotExportConfiguration configuration{
        .saveAs = ExportServiceHelper::saveAs(lastExportContentType(), types),
        .supportedContentTypes = types.supported,
    };
    switch (target) {
    case IntegrationExportTarget::email:
        configuration.emailCreateContacts = lastEmailCreateContacts();
        configuration.emailSaveContactsLifecycleStage = lastEmailSaveContactsLifecycleStage();
        configuration.emailSaveContactsLeadStatus = lastEmailSaveContactsLeadStatus();
        break;
    case IntegrationExportTarget::meetingNote:
        configuration.noteCreate = lastNoteCreate();
        configuration.noteSaveContactsLifecycleStage = lastNoteSaveContactsLifecycleStage();
        configuration.noteSaveContactsLeadStatus = lastNoteSaveContactsLeadStatus();
        break;
    }
    return configuration;
}

IntegrationExportContentTypes HubspotExporter::contentTypes(IntegrationExportTarget) const {
    return {Type::plainText, {Type::plainText}};
}

void HubspotExporter::loadPreview(IntegrationExportContentType type,
                                  Callback<std::optional<IntegrationExportPreview>> completion) {
    if (type != Type::plainText) {
        return completion(std::nullopt);
    }
    dataInteractor().messagePlainText(std::nullopt, [completion = std::move(completion)](auto body) mutable {
        completion(body ? std::optional(IntegrationExportPreview::email(*std::move(body))) : std::nullopt);
    });
}

void HubspotExporter::fetchData(StepRun& run, DataCompletion done) {
    const auto client = createHubspotClient(run, done);
    if (!client) {
        return;
    }
    using Both = Joined<ServiceClientError, HubspotTokenMetadata, HubspotPayloadGetContactLifecycleStages>;
    const auto both = std::make_shared<Both>([this, done = std::move(done)](auto loaded) mutable {
        if (!loaded) {
            return done(failure(loadError(loaded.error())));
        }
        userEmail.set(std::get<HubspotTokenMetadata>(*loaded).user);
        contactLifecycleStages.set(std::get<HubspotPayloadGetContactLifecycleStages>(*loaded).results);
        done(loadedData());
    });
    client->fetchTokenMetadata(both->part<0>());
    client->fetchContactLifecycleStages(both->part<1>());
}

std::optional<HubspotFullData> HubspotExporter::loadedData() const {
    return dataOf(contactLifecycleStages());
}

std::optional<std::string> HubspotExporter::loadUserEmail() {
    return ExportServiceHelper::isNotEmpty(userEmail()) ? userEmail() : std::nullopt;
}

std::shared_ptr<ExportProgress>
HubspotExporter::export_(HubspotExportConfiguration configuration,
                         Completion<void, IntegrationExportError> completion) {
    auto finish = createResultMediator(configuration, std::move(completion));
    if (!skippableAssert(configuration.saveAs == Type::plainText, "Unexpected saveAs type")) {
        return refuseFormat(0, finish);
    }
    switch (exportTarget()) {
    case IntegrationExportTarget::email:
        return exportEmail(std::move(configuration), std::move(finish));
    case IntegrationExportTarget::meetingNote:
        return exportNote(std::move(configuration), std::move(finish));
    }
    return refuseFormat(0, finish);
}

// The text comes before anything is made on the service: without it nothing will be.

std::shared_ptr<ExportProgress> HubspotExporter::exportEmail(HubspotExportConfiguration configuration,
                                                             ResultMediator<void> finish) {
    auto steps = exportSteps(FailureRule::stop, emailSteps, std::move(finish));
    const auto body = steps.add<HubspotEmailBody>(&HubspotExporter::makeEmailBody);
    const auto user = steps.add<std::string>(&HubspotExporter::loadUser, std::string(emailKind));
    const auto contacts =
        steps.add<ContactIds>(&HubspotExporter::resolveContacts, std::move(configuration), user);
    steps.add<void>(&HubspotExporter::createEmail, body, contacts);
    return steps.execute();
}

std::shared_ptr<ExportProgress> HubspotExporter::exportNote(HubspotExportConfiguration configuration,
                                                            ResultMediator<void> finish) {
    const bool hasMeeting = configuration.noteCreate == HubspotNoteCreate::noteAndMeeting;
    auto steps =
        exportSteps(FailureRule::stop, hasMeeting ? noteAndMeetingSteps : noteSteps, std::move(finish));
    const auto body = steps.add<std::string>(&HubspotExporter::makeNoteText);
    const auto meeting =
        hasMeeting ? steps.add<HubspotMeetingContent>(&HubspotExporter::makeMeetingContent) : nullptr;
    const auto user = steps.add<std::string>(&HubspotExporter::loadUser, std::string(noteKind));
    const auto contacts =
        steps.add<ContactIds>(&HubspotExporter::resolveContacts, std::move(configuration), user);
    steps.add<void>(&HubspotExporter::createNote, body, contacts);
    if (hasMeeting) {
        steps.add<void>(&HubspotExporter::createMeeting, meeting, contacts);
    }
    return steps.execute();
}

void HubspotExporter::makeEmailBody(StepRun& run, StepCompletion<HubspotEmailBody> done) {
    dataInteractor().messagePlainText(std::nullopt, [this, &run, done = std::move(done)](auto plain) mutable {
        addHtml(run, std::move(plain), std::move(done));
    });
}

void HubspotExporter::addHtml(StepRun& run, std::optional<std::string> plain,
                              StepCompletion<HubspotEmailBody> done) {
    if (run.isCancelled()) {
        return done(failure(ExportError::canceled));
    }
    dataInteractor().html(emailHtml(), [plain = std::move(plain), done = std::move(done)](auto html) mutable {
        if (!plain && !html) {
            return done(failure(ExportError::createBodyError));
        }
        done(HubspotEmailBody{std::move(plain), std::move(html)});
    });
}

void HubspotExporter::makeNoteText(StepRun&, StepCompletion<std::string> done) {
    dataInteractor().messagePlainText(std::nullopt, [done = std::move(done)](auto plain) mutable {
        done(plain ? ExporterResult<std::string>(*std::move(plain)) : failure(ExportError::createBodyError));
    });
}

void HubspotExporter::makeMeetingContent(StepRun& run, StepCompletion<HubspotMeetingContent> done) {
    dataInteractor().meetTranscript(Meeting::summary, text, std::nullopt,
                                    [this, &run, done = std::move(done)](auto summary) mutable {
                                        addMeetingNotes(run, {.body = std::move(summary)}, std::move(done));
                                    });
}

void HubspotExporter::addMeetingNotes(StepRun& run, HubspotMeetingContent content,
                                      StepCompletion<HubspotMeetingContent> done) {
    if (run.isCancelled()) {
        return done(failure(ExportError::canceled));
    }
    dataInteractor().meetTranscript(
        Meeting::notes, text, std::nullopt,
        [this, &run, content = std::move(content), done = std::move(done)](auto notes) mutable {
            content.notes = std::move(notes);
            addMeetingURL(run, std::move(content), std::move(done));
        });
}

void HubspotExporter::addMeetingURL(StepRun& run, HubspotMeetingContent content,
                                    StepCompletion<HubspotMeetingContent> done) {
    if (run.isCancelled()) {
        return done(failure(ExportError::canceled));
    }
    const auto link = IntegrationLinkType::webLink(IntegrationLinkFormat::raw,
                                                   IntegrationWebLinkVisibility::onlyMe, std::nullopt);
    dataInteractor().link(link, [content = std::move(content), done = std::move(done)](auto url) mutable {
        content.externalURL = std::move(url);
        done(std::move(content));
    });
}

void HubspotExporter::loadUser(StepRun& run, std::string objectKind, StepCompletion<std::string> done) {
    if (auto known = loadUserEmail()) {
        return done(*std::move(known));
    }
    const auto client = createHubspotClient(run, done);
    if (!client) {
        return;
    }
    client->fetchTokenMetadata(
        preparing<HubspotTokenMetadata>(run,
                                        {.kind = std::move(objectKind),
                                         .name = dataInteractor().title(),
                                         .error = std::nullopt,
                                         .warning = "Hubspot loading user error: ",
                                         .function = "loadUserEmail(updateProgress:)"},
                                        [this, done = std::move(done)](auto metadata) mutable {
                                            if (!metadata) {
                                                return done(failure(metadata.error()));
                                            }
                                            userEmail.set(metadata->user);
                                            done(std::move(metadata->user));
                                        }));
}

void HubspotExporter::resolveContacts(StepRun& run, const HubspotExportConfiguration& configuration,
                                      const Step<std::string>& user, StepCompletion<ContactIds> done) {
    InOrder<Contact, ExportError>::run(
        contactsOf(configuration, *resultOf(user)),
        [this, &run](Contact& contact, auto found) { findContact(run, contact, std::move(found)); },
        [done = std::move(done)](auto resolved) mutable {
            if (!resolved) {
                return done(failure(resolved.error()));
            }
            // Two addresses may be of one contact.
            ContactIds ids;
            std::unordered_set<std::string> known;
            for (auto& contact : *resolved) {
                if (known.insert(contact.id).second) {
                    ids.push_back(std::move(contact.id));
                }
            }
            done(std::move(ids));
        });
}

std::vector<HubspotExporter::Contact>
HubspotExporter::contactsOf(const HubspotExportConfiguration& configuration, const std::string& user) const {
    const auto target = exportTarget();
    std::vector<IntegrationsInteractorAddress> parties;
    switch (target) {
    case IntegrationExportTarget::email:
        if (const auto choice = configuration.emailCreateContacts) {
            parties = hubspotParties(dataInteractor().addresses(), *choice, user);
        }
        break;
    case IntegrationExportTarget::meetingNote:
        parties =
            hubspotAttendees(dataInteractor().meetTranscriptAttendees().value_or(decltype(parties)()), user);
        break;
    }
    std::vector<Contact> contacts;
    contacts.reserve(parties.size());
    for (const auto& party : parties) {
        contacts.push_back({.payload = hubspotContact(party, configuration, target)});
    }
    return contacts;
}

void HubspotExporter::findContact(StepRun& run, Contact& contact, StepCompletion<void> done) {
    const auto client = createHubspotClient(run, done);
    if (!client) {
        return;
    }
    client->findContact(contact.email(), [this, &run, &contact, done = std::move(done)](auto found) mutable {
        if (found) {
            contact.id = std::move(found->id);
            return done({});
        }
        if (found.error() == ServiceClientError::itemNotFound) {
            return createContact(run, contact, std::move(done));
        }
        refuseUnsent(run, contact.finding(), found.error());
        done(failure(exportError(found.error())));
    });
}

void HubspotExporter::createContact(StepRun& run, Contact& contact, StepCompletion<void> done) {
    const auto client = createHubspotClient(run, done);
    if (!client) {
        return;
    }
    const auto making = contact.creating();
    contact.place = run.report().begin(making.kind, making.name);
    client->createContact(contact.payload,
                          [this, &run, &contact, done = std::move(done)](auto created) mutable {
                              takeCreated(run, contact, created, std::move(done));
                          });
}

void HubspotExporter::takeCreated(StepRun& run, Contact& contact,
                                  const Result<HubspotObject, ServiceClientError>& created,
                                  StepCompletion<void> done) {
    if (created) {
        contact.id = created->id;
        run.report().made(contact.place, contact.id);
        return done({});
    }
    const auto refusal = lastRefusal();
    if (created.error() == ServiceClientError::apiCallError && refusal && refusal->isConflict) {
        contact.conflict = refusal;
        // A second look-up that fails has words of its own, or none.
        run.report().note({});
        return findContactAgain(run, contact, std::move(done));
    }
    refuse(run, contact.place, contact.creating(), created.error());
    done(failure(exportError(created.error())));
}

// Somebody else has created it since it was looked up.
void HubspotExporter::findContactAgain(StepRun& run, Contact& contact, StepCompletion<void> done) {
    const auto client = createHubspotClient(run, done);
    if (!client) {
        return;
    }
    client->findContact(contact.email(), [&run, &contact, done = std::move(done)](auto found) mutable {
        if (found) {
            run.report().withdraw(contact.place);
            contact.id = std::move(found->id);
            return done({});
        }
        auto error = found.error();
        if (error == ServiceClientError::itemNotFound) {
            // There is none of that address, so that the refusal to create it stands.
            error = ServiceClientError::apiCallError;
            run.report().note(*contact.conflict);
        }
        refuse(run, contact.place, contact.creating(), error);
        done(failure(exportError(error)));
    });
}

void HubspotExporter::createEmail(StepRun& run, const Step<HubspotEmailBody>& body,
                                  const Step<ContactIds>& contacts, StepCompletion<void> done) {
    const auto title = dataInteractor().title();
    const auto email =
        hubspotEmail(title, dataInteractor().addresses(), *resultOf(body), *resultOf(contacts), Date::now());
    if (!email) {
        return done(failure(ExportError::createBodyError));
    }
    const auto client = createHubspotClient(run, done);
    if (!client) {
        return;
    }
    client->createEmail(*email, reported(run,
                                         {.kind = emailKind,
                                          .name = title,
                                          .error = std::nullopt,
                                          .warning = "Hubspot creation email error: ",
                                          .function = "createEmail(configuration:updateProgress:)"},
                                         std::move(done)));
}

void HubspotExporter::createNote(StepRun& run, const Step<std::string>& body,
                                 const Step<ContactIds>& contacts, StepCompletion<void> done) {
    const auto client = createHubspotClient(run, done);
    if (!client) {
        return;
    }
    client->createNote(hubspotNote(*resultOf(body), *resultOf(contacts), Date::now()),
                       reported(run,
                                {.kind = noteKind,
                                 .name = dataInteractor().title(),
                                 .error = std::nullopt,
                                 .warning = "Hubspot creation note error: ",
                                 .function = "createNote(configuration:updateProgress:)",
                                 .leftOutCharacters = leftOutOfHubspotNote(*resultOf(body))},
                                std::move(done)));
}

void HubspotExporter::createMeeting(StepRun& run, const Step<HubspotMeetingContent>& content,
                                    const Step<ContactIds>& contacts, StepCompletion<void> done) {
    const auto client = createHubspotClient(run, done);
    if (!client) {
        return;
    }
    auto& host = dataInteractor();
    const auto title = host.title();
    client->createMeeting(hubspotMeeting(title, *resultOf(content), host.meetTranscriptStartDate(),
                                         host.meetTranscriptEndDate(), *resultOf(contacts), Date::now()),
                          reported(run,
                                   {.kind = meetingKind,
                                    .name = title,
                                    .error = std::nullopt,
                                    .warning = "Hubspot creation meeting error: ",
                                    .function = "createMeeting(configuration:updateProgress:)"},
                                   std::move(done)));
}

template <class Done>
std::shared_ptr<HubspotClient> HubspotExporter::createHubspotClient(StepRun& run, Done& done) {
    return clientOf<HubspotClient, HubspotAuthoriser>(run, done);
}

} // namespace zelto
