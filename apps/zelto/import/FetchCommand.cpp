#include "accounts/SecretPlaces.h"
#include "base/Interruption.h"
#include "base/PreparedFolder.h"
#include "base/Waiting.h"
#include "commandline/Commands.h"
#include "commandline/ProgressOption.h"
#include "commandline/TimeoutOption.h"
#include "export/StallWatch.h"
#include "import/DownloadReporter.h"
#include "import/ImportFailures.h"
#include "import/ImportWork.h"

#include <functional>
#include <optional>
#include <stop_token>

namespace zelto::cli {

namespace {

using Infos = std::vector<DownloadFileInfo>;
using Fetched = Result<std::vector<std::string>, IntegrationLoadError>;

// Identifiers hold colons, file names of drives hardly ever do.
Outcome<Infos> filesOf(const Invocation& invocation) {
    Infos infos;
    for (const auto& text : invocation.values("FILE_ID:NAME")) {
        const auto colon = text.rfind(':');
        if (colon == std::string::npos || colon == 0 || colon + 1 == text.size()) {
            return wrongUsage("\"" + text + "\" is no FILE_ID:NAME; `zelto files` lists them.");
        }
        infos.emplace_back(text.substr(0, colon), text.substr(colon + 1));
    }
    return infos;
}

struct EndedFetch {
    Fetched result;
    bool wasInterrupted;
    bool hasStalled;
};

// The first Ctrl-C cancels it, and so does a standstill.
EndedFetch fetch(ServiceImporter& importer, Infos infos, const DownloadReporter& reporter,
                 std::chrono::milliseconds timeout) {
    const Interruption interruption;
    std::optional<std::stop_callback<std::function<void()>>> cancelling;
    std::optional<StallWatch> stallWatch;
    auto result = waitFor<Fetched>([&](auto done) {
        const auto progress = importer.downloadFiles(std::move(infos), std::move(done));
        reporter.follow(*progress);
        const auto cancel = [progress] { progress->cancel(); };
        cancelling.emplace(interruption.stop(), cancel);
        stallWatch.emplace(
            timeout, [progress] { return static_cast<double>(progress->endedFileCount()); }, cancel);
    });
    reporter.end();
    return {std::move(result), interruption.stop().stop_requested(), stallWatch->hasStalled()};
}

} // namespace

Outcome<Report> runFetch(const Invocation& invocation, const Terminal& terminal) {
    auto infos = filesOf(invocation);
    if (!infos) {
        return failure(infos.error());
    }
    const auto timeout = timeoutOf(invocation, "600");
    if (!timeout) {
        return failure(timeout.error());
    }
    const auto work = ImportWork::open(invocation);
    if (!work) {
        return failure(work.error());
    }
    const std::filesystem::path folder = invocation.value("--out").value_or(".");
    if (const auto prepared = prepareFolder(folder); !prepared) {
        return failure(prepared.error());
    }
    auto& importer = *work->session.importer;
    importer.setDownloadFolder(folder);
    const DownloadReporter reporter(progressStyle(invocation), terminal);
    const auto ended = fetch(importer, *std::move(infos), reporter, *timeout);
    const auto report = importer.importReport();
    if (!ended.result) {
        ImportCircumstances about{.service = work->account.service(),
                                  .account = work->account.account.identifier(),
                                  .report = report,
                                  .wasInterrupted = ended.wasInterrupted};
        if (ended.hasStalled) {
            about.stalledFor = *timeout;
        }
        return failure(
            explained(importFailure(about, terminal), work->account.workspace, work->account.account));
    }
    return Report{{{"files", fetchedFiles(report)}}, fetchedPaths(report, terminal)};
}

} // namespace zelto::cli
