#include "accounts/FolderAccounts.h"
#include "accounts/SecretPlaces.h"
#include "base/Interruption.h"
#include "commandline/Commands.h"
#include "commandline/ProgressOption.h"
#include "commandline/TimeoutOption.h"
#include "export/DryRun.h"
#include "export/FilesInFolder.h"
#include "export/MessageWork.h"
#include "export/NotesOfContent.h"
#include "export/ProgressReporter.h"
#include "export/StallWatch.h"

#include <ZeltoHost/Platform/URLOpener.h>

#include <Platform/Text.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>

namespace zelto::cli {

namespace {

struct EndedExport {
    ExporterResult<void> result;
    bool hasStalled;
};

// Runs the export that was prepared under a progress bar; the first Ctrl-C cancels it, and so does a
// standstill.
EndedExport exportWithProgress(const Invocation& invocation, const Terminal& terminal,
                               std::chrono::milliseconds timeout, const MessageWork& work) {
    const ProgressReporter reporter(progressStyle(invocation), terminal);
    std::optional<Interruption> interruption;
    std::optional<std::stop_callback<std::function<void()>>> cancelling;
    std::optional<StallWatch> stallWatch;
    auto result = work.session->run([&](const auto& progress) {
        const auto cancel = [progress] { progress->cancel(); };
        reporter.follow(progress);
        // One for all, so that a Ctrl-C between an export and its repetition stops that too.
        if (!interruption) {
            interruption.emplace();
        }
        cancelling.emplace(interruption->stop(), cancel);
        stallWatch.emplace(
            timeout, [progress] { return progress->fractionCompleted(); }, cancel);
    });
    cancelling.reset();
    interruption.reset();
    reporter.end();
    return {std::move(result), stallWatch && stallWatch->hasStalled()};
}

void addWhatWasMade(Report& report, const MessageWork& work, const ExportPlan& plan,
                    const Terminal& terminal) {
    const auto made = work.session->report().made;
    report.isNotice = true;
    if (made.empty()) {
        report.text = "Handed to " + work.service() + ".\n";
        return;
    }
    report.members.set("target", plan.target);
    report.members.set("made", described(made));
    if (const auto files = work.files(); !files.empty()) {
        report.members.set("files", pathsOf(files));
        report.text =
            terminal.shown(importsFiles(work.account.serviceType())
                               ? "Made " + files.front().native() + ", which " + work.service() + " imports."
                               : "Made " + namedInFolder(files) + ".") +
            "\n";
        return;
    }
    const auto where = work.service() + (plan.target.empty() ? "" : ", " + plan.target);
    report.text = terminal.shown("On " + where + ": " + listOf(made) + ".") + "\n";
}

// A file that is thought to be there and is not is lost with its mail.
void addWhatWasLeftOut(JSONObject& members, const MessageWork& work, const ExportPlan& plan) {
    if (plan.leftOut.empty()) {
        return;
    }
    JSONValue::Array leftOut;
    for (const auto& name : plan.leftOut) {
        leftOut.emplace_back(name);
        writeError("zelto: warning: the attachment \"" + escapeControlCharacters(name) +
                   "\" is left out: " + work.service() + " takes none that is so large, or so many.\n");
    }
    members.set("leftOut", std::move(leftOut));
}

// What was typed and makes no difference is an error that nothing else shows.
void addUnusedOptions(JSONObject& members, const ExportPlan& plan) {
    JSONValue::Array options;
    for (const auto& [option, reason] : plan.unused) {
        options.emplace_back(option);
        writeError("zelto: warning: " + option + " makes no difference to an export as " +
                   std::string(nameOf(plan.saveAs)) + ": " + reason + ".\n");
    }
    if (!options.empty()) {
        members.set("unusedOptions", std::move(options));
    }
}

// A count of what each thing that was made may lack of the message.
struct LeftOut {
    std::size_t ExportReport::Made::*count;
    std::string_view unit;
    std::string_view key; // in JSON
};

constexpr LeftOut leftOutKinds[] = {
    {&ExportReport::Made::leftOutBlocks, "block", "leftOutBlocks"},
    {&ExportReport::Made::leftOutCharacters, "character", "leftOutCharacters"}};

void addLeftOut(JSONObject& members, const MessageWork& work, std::string_view verb, const LeftOut& kind) {
    std::size_t total = 0;
    for (const auto& made : work.session->report().made) {
        const auto count = made.*kind.count;
        if (count == 0) {
            continue;
        }
        total += count;
        writeError("zelto: warning: the " + escapeControlCharacters(listOf({made})) + " " +
                   std::string(verb) + " the end of the message, " + std::to_string(count) + " " +
                   std::string(kind.unit) + (count == 1 ? ": " : "s: ") + work.service() +
                   " takes no more at once.\n");
    }
    if (total > 0) {
        members.set(kind.key, total);
    }
}

// Of a long message, whose end the service has no room for.
void addEndLeftOut(JSONObject& members, const MessageWork& work, std::string_view verb) {
    for (const auto& kind : leftOutKinds) {
        addLeftOut(members, work, verb, kind);
    }
}

// The account is what the next export with its service takes.
Outcome<void> storeLastUsed(const MessageWork& work) {
    const auto last = work.manager->lastUsedConfiguration(work.account.serviceType());
    const auto isOfSandbox = work.workspace.isOfSandbox(work.account);
    const auto lastIsOfSandbox = last ? work.workspace.isOfSandbox(*last) : isOfSandbox;
    if (!isOfSandbox || !lastIsOfSandbox) {
        return failure(isOfSandbox ? lastIsOfSandbox.error() : isOfSandbox.error());
    }
    // What is tried in a sandbox does not change what exports without one take.
    if (*isOfSandbox && !*lastIsOfSandbox) {
        return work.workspace.storageOutcome();
    }
    work.manager->setLastUsedConfiguration(work.account.serviceType(), work.account);
    return work.workspace.storageOutcome();
}

// A dry run hands the URL to no program, so only it can say that none would take it.
void addSize(JSONObject& members, const std::string& url) {
    LimitCheck limits;
    limits.check("the URL for a program that opens it", url.size(), URLOpener::maximumURLSize(), "bytes");
    members.set("size", static_cast<std::int64_t>(url.size()));
    members.set("limits", described(limits.passed()));
    for (const auto& limit : limits.passed()) {
        writeError("zelto: warning: " + sentenceOf(limit) + "\n");
    }
}

Report reportOf(const MessageWork& work, const ExportPlan& plan, bool isDryRun, const Terminal& terminal) {
    Report report;
    report.members.set("service", std::string(nameOf(work.account.serviceType())));
    report.members.set("identifier", work.account.identifier());
    if (isDryRun) {
        report.members.set("dryRun", true);
    }
    if (const auto shownURL = work.delivery->shownURL()) {
        report.members.set("url", *shownURL);
        report.text = *shownURL + "\n";
        if (isDryRun) {
            addSize(report.members, *shownURL);
        }
    } else {
        addWhatWasMade(report, work, plan, terminal);
    }
    addWhatWasLeftOut(report.members, work, plan);
    addUnusedOptions(report.members, plan);
    addEndLeftOut(report.members, work, "lacks");
    addNotes(report.members, *work.notes);
    return report;
}

Outcome<Report> shownRequests(const Invocation& invocation, const Terminal& terminal,
                              std::chrono::milliseconds timeout, const MessageWork& work,
                              const ExportPlan& plan) {
    auto report = dryRun(work, plan, terminal,
                         [&] { return exportWithProgress(invocation, terminal, timeout, work).result; });
    if (report) {
        addWhatWasLeftOut(report->members, work, plan);
        addUnusedOptions(report->members, plan);
        addEndLeftOut(report->members, work, "would lack");
        addNotes(report->members, *work.notes);
    }
    return report;
}

} // namespace

Outcome<Report> runExport(const Invocation& invocation, const Terminal& terminal) {
    const auto edits = ConfigurationEdits::from(invocation);
    if (!edits) {
        return failure(edits.error());
    }
    const auto timeout = timeoutOf(invocation, "600");
    if (!timeout) {
        return failure(timeout.error());
    }
    const bool isDryRun = invocation.has("--dry-run");
    const auto work = MessageWork::open(invocation, isDryRun ? Effects::sendsNothing : Effects::all);
    if (!work) {
        return failure(work.error());
    }
    const auto plan =
        work->session->prepare(*edits, isDryRun ? DataLoading::never : DataLoading::whereMissing);
    if (!plan) {
        return failure(explained(plan.error(), work->workspace, work->account));
    }
    if (isDryRun && work->session->isOnWeb()) {
        return shownRequests(invocation, terminal, *timeout, *work, *plan);
    }
    const auto ended = exportWithProgress(invocation, terminal, *timeout, *work);
    if (!ended.result) {
        auto circumstances = work->circumstances(*plan);
        circumstances.timeout = *timeout;
        circumstances.hasStalled = ended.hasStalled;
        auto failed = exportFailure(ended.result.error(), circumstances);
        addNotes(failed.members, *work->notes);
        return failure(explained(std::move(failed), work->workspace, work->account));
    }
    if (!isDryRun) {
        if (const auto stored = storeLastUsed(*work); !stored) {
            return failure(stored.error());
        }
    }
    return reportOf(*work, *plan, isDryRun, terminal);
}

} // namespace zelto::cli
