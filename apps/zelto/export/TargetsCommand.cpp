#include "accounts/AccountWork.h"
#include "accounts/SecretPlaces.h"
#include "accounts/ServiceNames.h"
#include "commandline/Commands.h"
#include "export/ServiceTable.h"

#include <ZeltoIntegrations/Content/IntegrationsDataInteractorStub.h>

namespace zelto::cli {

Outcome<Report> runTargets(const Invocation& invocation, const Terminal& terminal) {
    const auto named = invocation.value("ID").value();
    if (const auto type = serviceNamed(named); type && !canExport(*type)) {
        return failure(cannotExport(*type));
    }
    auto work = AccountWork::open(invocation, named);
    if (!work) {
        return failure(work.error());
    }
    const auto session =
        openExportSession(work->manager, work->account, std::make_shared<IntegrationsDataInteractorStub>());
    if (!session) {
        return failure(session.error());
    }
    const auto targets = (*session)->targets(invocation.has("--refresh"));
    if (!targets) {
        return failure(explained(targets.error(), work->workspace, work->account));
    }
    if (const auto stored = work->workspace.storageOutcome(); !stored) {
        return failure(stored.error());
    }
    Report report{targets->data, invocation.has("--paths") ? terminal.shownLines(pathLinesOf(targets->tree))
                                                           : linesOf(targets->tree, terminal)};
    if (!holdsTargets(targets->tree)) {
        report.text = nothingToChoose(targets->tree, work->service()) + "\n";
        report.isNotice = true;
    }
    if (!targets->more.empty()) {
        report.members.set("hasMore", true);
        writeError("zelto: warning: " + targets->more + "\n");
    }
    return report;
}

} // namespace zelto::cli
