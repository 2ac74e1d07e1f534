#include "export/MessageWork.h"

#include "accounts/SecretPlaces.h"
#include "accounts/ServiceNames.h"
#include "accounts/UnchangedStorage.h"
#include "base/Waiting.h"
#include "export/DryPlatform.h"
#include "export/MessageFile.h"
#include "export/PlaceholderSecrets.h"
#include "export/ServiceTable.h"
#include "sandbox/SandboxAccounts.h"

#include <ZeltoHost/Folder/FolderFiles.h>
#include <ZeltoHost/Platform/EmailValidator.h>
#include <ZeltoHost/Process/CommandWords.h>

namespace zelto::cli {

namespace {

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

// The account's lock where one is needed, with secrets that can be read.
Outcome<std::optional<AccountLock>> secretsFor(ServiceAccountConfiguration& account,
                                               const Workspace& workspace, Effects effects) {
    if (effects == Effects::sendsNothing) {
        usePlaceholderSecrets(account);
        return std::nullopt;
    }
    auto lock = workspace.lockForUse(account);
    if (lock && effects == Effects::all) {
        if (const auto there = checkSecrets(workspace, account); !there) {
            return failure(there.error());
        }
        rememberKeyChainIfUnknown(workspace, account);
    }
    return lock;
}

std::shared_ptr<HostPlatformInteractor>
platformFor(Effects effects, const std::shared_ptr<URLDelivery>& delivery, PDFConverterOptions pdf) {
    auto openURL = [delivery](const URL& url, Callback<bool> done) { delivery->open(url, std::move(done)); };
    if (effects == Effects::sendsNothing) {
        return std::make_shared<DryPlatform>(std::move(openURL), std::move(pdf));
    }
    return std::make_shared<HostPlatformInteractor>(std::move(openURL), std::move(pdf));
}

bool isLinked(IntegrationsDataInteractorProtocol& message) {
    return waitFor<std::optional<std::string>>([&](auto done) {
               message.link(IntegrationLinkType::backlink(IntegrationLinkFormat::raw), std::move(done));
           })
        .has_value();
}

} // namespace

std::vector<std::filesystem::path> MessageWork::files() const {
    const auto files = platform->lastFiles();
    return files ? files->files() : std::vector<std::filesystem::path>();
}

Outcome<MessageWork> MessageWork::open(const Invocation& invocation, Effects effects) {
    const auto to = invocation.value("--to");
    if (!to) {
        return wrongUsage("--to is missing: name an account or a service.", "zelto accounts");
    }
    const auto notes = std::make_shared<ContentNotes>();
    auto message = openMessage(invocation, notes);
    if (!message) {
        return failure(message.error());
    }
    const bool hasOwnLink = isLinked(**message);
    auto pdf = pdfOptions(invocation);
    if (!pdf) {
        return failure(pdf.error());
    }
    pdf->notes = notes;
    auto delivery = URLDelivery::from(invocation);
    if (!delivery) {
        return failure(delivery.error());
    }
    if (const auto type = serviceNamed(*to); type && !canExport(*type)) {
        return failure(cannotExport(*type));
    }
    const bool stores = effects == Effects::all;
    auto workspace = Workspace::open(invocation, !stores);
    if (!workspace) {
        return failure(workspace.error());
    }
    auto storage = workspace->sharedStorage();
    if (!stores) {
        storage = std::make_shared<UnchangedStorage>(std::move(storage));
    }
    auto platform = platformFor(effects, *delivery, *std::move(pdf));
    auto manager =
        std::make_shared<IntegrationsManager>(std::move(storage), platform, isEmailAddress, std::string());
    auto account = workspace->account(*to, *manager, stores);
    if (!account) {
        return failure(account.error());
    }
    const auto requests = effects == Effects::sendsNothing ? Requests::none : Requests::sent;
    if (const auto allowed = checkSandboxUse(invocation, *workspace, *account, requests); !allowed) {
        return failure(allowed.error());
    }
    auto lock = secretsFor(*account, *workspace, effects);
    if (!lock) {
        return failure(lock.error());
    }
    auto session = openExportSession(*manager, *account, *std::move(message), platform);
    if (!session) {
        return failure(session.error());
    }
    return MessageWork{*std::move(workspace),
                       *std::move(delivery),
                       std::move(platform),
                       std::move(manager),
                       *std::move(account),
                       *std::move(lock),
                       *std::move(session),
                       notes,
                       hasOwnLink};
}

std::string MessageWork::service() const {
    return displayName(account.serviceType());
}

ExportCircumstances MessageWork::circumstances(const ExportPlan& plan) const {
    const auto files = platform->lastFiles();
    const auto report = session->report();
    return {.service = service(),
            .account = account.identifier(),
            .takenTypes = session->takenTypes(),
            .usualType = session->usualType(),
            .type = std::string(nameOf(plan.saveAs)),
            .title = plan.title,
            .attachments = plan.attachments,
            .tags = plan.tags,
            .hasLink = hasLink,
            .openerFailure = delivery->failureMessage(),
            .missingTarget = plan.missingTarget,
            .existingFiles = session->existingFiles(),
            .tellsMissingTargets = session->tellsMissingTargets(),
            .pdfError = platform->lastPDFError(),
            .fileError = files ? files->lastError() : std::nullopt,
            .report = report,
            .advice = report.refused.empty() ? std::nullopt : session->adviceOn(report.refused.front())};
}

} // namespace zelto::cli
