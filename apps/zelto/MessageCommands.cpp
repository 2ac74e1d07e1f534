#include "Commands.h"
#include "ConfigurationEdits.h"
#include "ExportSession.h"
#include "MessageFile.h"
#include "ProgressReporter.h"
#include "ServiceNames.h"
#include "URLDelivery.h"
#include "UnchangedStorage.h"
#include "Workspace.h"

#include <ZeltoHost/Platform/EmailValidator.h>
#include <ZeltoHost/Platform/HostPlatformInteractor.h>
#include <ZeltoHost/Process/CommandWords.h>

namespace zelto::cli {

namespace {

// All that a command about a message and an account works with.
struct MessageWork {
    Workspace workspace;
    std::shared_ptr<URLDelivery> delivery;
    std::shared_ptr<IntegrationsManager> manager;
    ServiceAccountConfiguration account;
    std::unique_ptr<ExportSession> session;
};

Outcome<PDFConverterOptions> pdfOptions(const Invocation& invocation) {
    PDFConverterOptions options;
    if (const auto command = invocation.value("--pdf-converter")) {
        auto words = commandWords(*command);
        if (!words) {
            return wrongUsage("--pdf-converter " + std::string(words.error().text) + ".");
        }
        options.command = *std::move(words);
    }
    return options;
}

// `leavesNoTrace`: nothing is stored, not even an account that an application gets at its first export.
Outcome<MessageWork> open(const Invocation& invocation, bool leavesNoTrace) {
    const auto to = invocation.value("--to");
    if (!to) {
        return wrongUsage("--to is missing: name an account or a service.", "zelto accounts");
    }
    auto message = openMessage(invocation);
    if (!message) {
        return failure(message.error());
    }
    auto pdf = pdfOptions(invocation);
    if (!pdf) {
        return failure(pdf.error());
    }
    auto delivery = URLDelivery::from(invocation);
    if (!delivery) {
        return failure(delivery.error());
    }
    if (const auto type = serviceNamed(*to); type && !canExport(*type)) {
        return failure(cannotExport(*type));
    }
    auto workspace = Workspace::open(invocation, leavesNoTrace);
    if (!workspace) {
        return failure(workspace.error());
    }
    auto storage = workspace->sharedStorage();
    if (leavesNoTrace) {
        storage = std::make_shared<UnchangedStorage>(std::move(storage));
    }
    auto interactor = std::make_shared<HostPlatformInteractor>(
        [delivery = *delivery](const URL& url, Callback<bool> done) { delivery->open(url, std::move(done)); },
        *std::move(pdf));
    auto manager = std::make_shared<IntegrationsManager>(std::move(storage), std::move(interactor),
                                                         isEmailAddress, std::string());
    auto account = workspace->account(*to, *manager, !leavesNoTrace);
    if (!account) {
        return failure(account.error());
    }
    auto session = openExportSession(*manager, *account, *std::move(message));
    if (!session) {
        return failure(session.error());
    }
    return MessageWork{*std::move(workspace), *std::move(delivery), std::move(manager), *std::move(account),
                       *std::move(session)};
}

ProgressStyle progressStyle(const Invocation& invocation) {
    const auto style = invocation.value("--progress");
    if (style == "json") {
        return ProgressStyle::json;
    }
    return style == "none" || invocation.has("--quiet") ? ProgressStyle::none : ProgressStyle::bar;
}

Failure exportFailure(IntegrationExportError error, const MessageWork& work) {
    const auto service = displayName(work.account.serviceType());
    const auto sentence = [&]() -> std::pair<std::string, std::string> {
        switch (error) {
        case IntegrationExportError::canceled:
            return {"The export was canceled.", ""};
        case IntegrationExportError::internalError:
            return {"The export to " + service + " met an error of its own.", "zelto export --verbose"};
        case IntegrationExportError::createBodyError:
            return {"The message has no text or no link of that kind.", "zelto preview --help"};
        case IntegrationExportError::convertError:
            return {"The message could not be turned into a PDF.", "zelto export --verbose"};
        case IntegrationExportError::unsupportedFormat:
            return {service + " does not take that type; it takes " + work.session->takenTypes() + ".",
                    "zelto export --help"};
        case IntegrationExportError::fileAlreadyExists:
            return {"A file of that name exists already.", "zelto export --title"};
        case IntegrationExportError::oauthError:
            return {service + " does not accept the account's sign-in any more.", "zelto connect"};
        case IntegrationExportError::connectionError:
            return {service + " could not be reached.", ""};
        case IntegrationExportError::createTaskError:
            return {service + " did not make the task.", ""};
        case IntegrationExportError::uploadAttachmentError:
            return {"An attachment could not be sent.", "zelto export --attach none"};
        case IntegrationExportError::urlEncodeError:
            return {"The title or the text is not UTF-8.", "zelto export --title"};
        case IntegrationExportError::createUrlError:
            return {"The title, the text and the tags make no URL; a tag with a blank is the usual reason.",
                    "zelto export --tags"};
        case IntegrationExportError::xUrlCallbackError:
            return {work.delivery->failureMessage(), "zelto export --opener -"};
        }
        return {};
    }();
    return {std::string(nameOf(error)), sentence.first, sentence.second};
}

JSONValue described(const IntegrationExportPreview& preview) {
    const auto one = [](std::string_view name, JSONObject payload) {
        JSONObject object;
        object.set(name, std::move(payload));
        return JSONValue(std::move(object));
    };

    struct Described {
        decltype(one) make;

        JSONValue operator()(const IntegrationExportPreview::Pdf& pdf) const {
            return make("pdf", {{"name", pdf.name}});
        }

        JSONValue operator()(const IntegrationExportPreview::Email& mail) const {
            return make("email", {{"body", mail.body}});
        }

        JSONValue operator()(const IntegrationExportPreview::BackLink& link) const {
            return make("backLink", {{"url", link.url}});
        }

        JSONValue operator()(const IntegrationExportPreview::WebLink& link) const {
            return make("webLink", {{"url", link.url}});
        }

        JSONValue operator()(const IntegrationExportPreview::ExternalLink&) const {
            return make("externalLink", {});
        }
    };

    return std::visit(Described{one}, preview.value);
}

std::string textOf(const IntegrationExportPreview& preview) {
    struct Text {
        std::string operator()(const IntegrationExportPreview::Pdf& pdf) const { return pdf.name; }

        std::string operator()(const IntegrationExportPreview::Email& mail) const { return mail.body; }

        std::string operator()(const IntegrationExportPreview::BackLink& link) const { return link.url; }

        std::string operator()(const IntegrationExportPreview::WebLink& link) const { return link.url; }

        std::string operator()(const IntegrationExportPreview::ExternalLink&) const { return {}; }
    };

    return std::visit(Text(), preview.value);
}

} // namespace

Outcome<Report> runConfig(const Invocation& invocation, const Terminal&) {
    const auto work = open(invocation, true);
    if (!work) {
        return failure(work.error());
    }
    const auto configuration = work->session->offeredConfiguration();
    if (!configuration) {
        return failure(configuration.error());
    }
    Report report{{}, terminalSafeJSON(*configuration) + "\n"};
    // Behind "result", so that this too goes back in by --config.
    if (const auto value = JSONValue::parse(*configuration); value && value->asObject()) {
        report.members = *value->asObject();
    }
    return report;
}

Outcome<Report> runPreview(const Invocation& invocation, const Terminal& terminal) {
    const auto edits = ConfigurationEdits::from(invocation);
    const auto work = edits ? open(invocation, true) : failure(edits.error());
    if (!work) {
        return failure(work.error());
    }
    const auto preview = work->session->preview(edits->saveAs);
    if (!preview) {
        return failure(preview.error());
    }
    if (!*preview) {
        return failure(Failure{"noPreview",
                               displayName(work->account.serviceType()) +
                                   " has no preview of that type for this message; it takes " +
                                   work->session->takenTypes() + ".",
                               "zelto preview --help"});
    }
    Report report;
    report.members.set("preview", described(**preview));
    report.text = terminal.shownLines(textOf(**preview)) + "\n";
    return report;
}

Outcome<Report> runExport(const Invocation& invocation, const Terminal& terminal) {
    const auto edits = ConfigurationEdits::from(invocation);
    const bool isDryRun = invocation.has("--dry-run");
    const auto work = edits ? open(invocation, isDryRun) : failure(edits.error());
    if (!work) {
        return failure(work.error());
    }
    const ProgressReporter reporter(progressStyle(invocation), terminal);
    const auto result = work->session->run(*edits, [&](const auto& progress) { reporter.follow(progress); });
    reporter.end();
    if (!result) {
        return failure(result.error());
    }
    if (!*result) {
        return failure(exportFailure(result->error(), *work));
    }
    work->manager->setLastUsedConfiguration(work->account.serviceType(), work->account);
    if (const auto stored = work->workspace.storageOutcome(); !stored) {
        return failure(stored.error());
    }
    Report report;
    report.members.set("service", std::string(nameOf(work->account.serviceType())));
    report.members.set("identifier", work->account.identifier());
    if (isDryRun) {
        report.members.set("dryRun", true);
    }
    if (const auto shownURL = work->delivery->shownURL()) {
        report.members.set("url", *shownURL);
        report.text = *shownURL + "\n";
    } else {
        report.text = "Handed to " + displayName(work->account.serviceType()) + ".\n";
        report.isNotice = true;
    }
    return report;
}

} // namespace zelto::cli
