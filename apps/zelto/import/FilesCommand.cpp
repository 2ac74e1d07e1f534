#include "accounts/SecretPlaces.h"
#include "base/ShellText.h"
#include "base/Waiting.h"
#include "commandline/Commands.h"
#include "import/ImportFailures.h"
#include "import/ImportWork.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace zelto::cli {

namespace {

using Listing = ImportSession::Listing;

// As the last colon of what `zelto fetch` takes needs it.
std::string nameToFetch(const IntegrationImportFile& file) {
    auto name = file.name().empty() ? file.id() : file.name();
    std::ranges::replace(name, ':', '_');
    return name;
}

// A file as `zelto fetch` takes it. What a shell would not take as it stands is quoted.
std::string lineOf(const IntegrationImportFile& entry, const Terminal& terminal) {
    if (entry.isFolder()) {
        return terminal.shown(entry.name() + "/  " + entry.id()) + "\n";
    }
    return terminal.shown(shellWord(entry.id() + ":" + nameToFetch(entry))) + "\n";
}

JSONValue::Array described(const Listing& listing) {
    JSONValue::Array entries;
    for (const auto& entry : listing) {
        entries.emplace_back(JSONObject{
            {"kind", entry.isFolder() ? "folder" : "file"}, {"id", entry.id()}, {"name", entry.name()}});
    }
    return entries;
}

Listing foldersFirst(const Listing& entries) {
    Listing sorted;
    std::ranges::copy_if(entries, std::back_inserter(sorted), &IntegrationImportFile::isFolder);
    std::ranges::copy_if(entries, std::back_inserter(sorted), std::not_fn(&IntegrationImportFile::isFolder));
    return sorted;
}

Report reportOf(const Listing& entries, const Terminal& terminal) {
    const auto listing = foldersFirst(entries);
    Report report;
    report.members.set("files", described(listing));
    for (const auto& entry : listing) {
        report.text += lineOf(entry, terminal);
    }
    if (listing.empty()) {
        report.text = "The folder is empty.\n";
        report.isNotice = true;
    }
    return report;
}

} // namespace

Outcome<Report> runFiles(const Invocation& invocation, const Terminal& terminal) {
    const auto work = ImportWork::open(invocation);
    if (!work) {
        return failure(work.error());
    }
    const auto& [importer, fetchFiles] = work->session;
    const auto folder = invocation.value("FOLDER");
    auto listing = waitFor<Result<Listing, IntegrationLoadError>>(
        [&](auto done) { fetchFiles(*importer, folder, std::move(done)); });
    if (!listing) {
        auto failed = listingFailure(listing.error(), work->account.service(),
                                     work->account.account.identifier(), folder, importer->lastRefusal());
        return failure(explained(std::move(failed), work->account.workspace, work->account.account));
    }
    return reportOf(*listing, terminal);
}

} // namespace zelto::cli
