#include "accounts/KeyChainCheck.h"
#include "accounts/ServiceNames.h"
#include "accounts/UnchangedStorage.h"
#include "accounts/Workspace.h"
#include "base/Interruption.h"
#include "commandline/Commands.h"
#include "export/ConfigurationEdits.h"
#include "export/ExportFailures.h"
#include "export/ExportSession.h"
#include "export/MessageFile.h"
#include "export/ProgressReporter.h"
#include "export/URLDelivery.h"

#include <Platform/Text.h>
#include <ZeltoHost/Platform/EmailValidator.h>
#include <ZeltoHost/Platform/HostPlatformInteractor.h>
#include <ZeltoHost/Process/CommandWords.h>

#include <functional>
#include <optional>
#include <stop_token>

namespace zelto::cli {

namespace {

// All that a command about a message and an account works with.
struct MessageWork {
    Workspace workspace;
    std::shared_ptr<URLDelivery> delivery;
    std::shared_ptr<HostPlatformInteractor> platform;
    std::shared_ptr<IntegrationsManager> manager;
    ServiceAccountConfiguration account;
    std::optional<AccountLock> lock;
    std::unique_ptr<ExportSession> session;
};

Outcome<PDFConverterOptions> pdfOptions(const Invocation& invocation) {
    PDFConverterOptions options;
    if (const auto command = invocation.value("--pdf-converter")) {
        auto words = commandWords(*command);
        if (!words) {
            return wrongUsage("--pdf-converter " + std::string(words.error().text) + ".");
        }
        if (!findProgram(words->front())) {
            return wrongUsage("--pdf-converter names no program that is here: \"" + words->front() + "\".");
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
    auto platform = std::make_shared<HostPlatformInteractor>(
        [delivery = *delivery](const URL& url, Callback<bool> done) { delivery->open(url, std::move(done)); },
        *std::move(pdf));
    auto manager =
        std::make_shared<IntegrationsManager>(std::move(storage), platform, isEmailAddress, std::string());
    auto account = workspace->account(*to, *manager, !leavesNoTrace);
    if (!account) {
        return failure(account.error());
    }
    auto lock = workspace->lockForUse(*account);
    if (!lock) {
        return failure(lock.error());
    }
    if (!leavesNoTrace) {
        if (const auto readable = checkReadable(account->credentials); !readable) {
            return failure(readable.error());
        }
    }
    auto session = openExportSession(*manager, *account, *std::move(message));
    if (!session) {
        return failure(session.error());
    }
    return MessageWork{*std::move(workspace), *std::move(delivery), std::move(platform), std::move(manager),
                       *std::move(account),   *std::move(lock),     *std::move(session)};
}

ProgressStyle progressStyle(const Invocation& invocation) {
    const auto style = invocation.value("--progress");
    if (style == "json") {
        return ProgressStyle::json;
    }
    return style == "none" || invocation.has("--quiet") ? ProgressStyle::none : ProgressStyle::bar;
}

ExportCircumstances circumstances(const MessageWork& work) {
    return {.service = displayName(work.account.serviceType()),
            .account = work.account.identifier(),
            .takenTypes = work.session->takenTypes(),
            .openerFailure = work.delivery->failureMessage(),
            .pdfError = work.platform->lastPDFError(),
            .report = work.session->report()};
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
    const auto configuration = work->session->offeredConfiguration(invocation.value("--target"));
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

namespace {

// Runs the export under a progress bar; the first Ctrl-C cancels it.
Outcome<ExporterResult<void>> exportWithProgress(const Invocation& invocation, const Terminal& terminal,
                                                 const ConfigurationEdits& edits, const MessageWork& work) {
    const ProgressReporter reporter(progressStyle(invocation), terminal);
    std::optional<Interruption> interruption;
    std::optional<std::stop_callback<std::function<void()>>> cancelling;
    auto result = work.session->run(edits, [&](const auto& progress) {
        reporter.follow(progress);
        interruption.emplace();
        cancelling.emplace(interruption->stop(), [progress] { progress->cancel(); });
    });
    cancelling.reset();
    interruption.reset();
    reporter.end();
    return result;
}

Report reportOfPlan(const ExportPlan& plan, const MessageWork& work, const Terminal& terminal) {
    JSONValue::Array attachments;
    std::string files;
    for (const auto& name : plan.attachments) {
        attachments.emplace_back(name);
        files += ", " + name;
    }
    Report report;
    report.members = {{"service", std::string(nameOf(work.account.serviceType()))},
                      {"identifier", work.account.identifier()},
                      {"dryRun", true},
                      {"title", plan.title},
                      {"saveAs", std::string(nameOf(plan.saveAs))},
                      {"target", plan.target},
                      {"attachments", std::move(attachments)}};
    report.text = terminal.shown("Would go to " + displayName(work.account.serviceType()) +
                                 (plan.target.empty() ? "" : ", " + plan.target) + ": \"" + plan.title +
                                 "\" as " + std::string(nameOf(plan.saveAs)) + files + ".") +
                  "\n";
    return report;
}

void tellWhatWasMade(Report& report, const MessageWork& work, const Terminal& terminal) {
    const auto service = displayName(work.account.serviceType());
    const auto made = work.session->report().made;
    report.isNotice = true;
    if (made.empty()) {
        report.text = "Handed to " + service + ".\n";
        return;
    }
    const auto& target = work.session->target();
    report.text =
        terminal.shown("On " + service + (target.empty() ? "" : ", " + target) + ": " + listOf(made) + ".") +
        "\n";
    report.members.set("target", target);
    report.members.set("made", cli::described(made));
}

// A file that is thought to be there and is not is lost with its mail.
void tellWhatWasLeftOut(Report& report, const MessageWork& work) {
    const auto& names = work.session->leftOut();
    if (names.empty()) {
        return;
    }
    JSONValue::Array leftOut;
    for (const auto& name : names) {
        leftOut.emplace_back(name);
        writeError("zelto: warning: the attachment \"" + escapeControlCharacters(name) + "\" is left out: " +
                   displayName(work.account.serviceType()) + " takes none that is so large, or so many.\n");
    }
    report.members.set("leftOut", std::move(leftOut));
}

} // namespace

Outcome<Report> runExport(const Invocation& invocation, const Terminal& terminal) {
    const auto edits = ConfigurationEdits::from(invocation);
    const bool isDryRun = invocation.has("--dry-run");
    const auto work = edits ? open(invocation, isDryRun) : failure(edits.error());
    if (!work) {
        return failure(work.error());
    }
    if (isDryRun && work->session->isOverNetwork()) {
        const auto plan = work->session->plan(*edits);
        if (!plan) {
            return failure(plan.error());
        }
        auto report = reportOfPlan(*plan, *work, terminal);
        tellWhatWasLeftOut(report, *work);
        return report;
    }
    const auto result = exportWithProgress(invocation, terminal, *edits, *work);
    if (!result) {
        return failure(result.error());
    }
    if (!*result) {
        return failure(exportFailure(result->error(), circumstances(*work)));
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
        tellWhatWasMade(report, *work, terminal);
    }
    tellWhatWasLeftOut(report, *work);
    return report;
}

} // namespace zelto::cli
