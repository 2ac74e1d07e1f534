#include "accounts/AccountConnection.h"
#include "accounts/KeyChainCheck.h"
#include "accounts/SecretPlaces.h"
#include "accounts/ServiceNames.h"
#include "commandline/Commands.h"
#include "export/ServiceTable.h"
#include "sandbox/SandboxAccounts.h"

#include <ZeltoIntegrations/Content/IntegrationsDataInteractorStub.h>

namespace zelto::cli {

Outcome<Report> runTargets(const Invocation& invocation, const Terminal& terminal) {
    const auto named = invocation.value("ID").value();
    if (const auto type = serviceNamed(named); type && !canExport(*type)) {
        return failure(cannotExport(*type));
    }
    const auto workspace = Workspace::open(invocation, true);
    if (!workspace) {
        return failure(workspace.error());
    }
    auto manager = managerOf(*workspace);
    auto account = workspace->account(named, manager, false);
    if (!account) {
        return failure(account.error());
    }
    if (const auto allowed = checkSandboxUse(invocation, *workspace, *account, Requests::sent); !allowed) {
        return failure(allowed.error());
    }
    const auto lock = workspace->lockForUse(*account);
    if (!lock) {
        return failure(lock.error());
    }
    // What is remembered is shown without them.
    if (const auto readable = hasRecord(account->credentials); !readable) {
        return failure(readable.error());
    }
    const auto session =
        openExportSession(manager, *account, std::make_shared<IntegrationsDataInteractorStub>());
    if (!session) {
        return failure(session.error());
    }
    const auto targets = (*session)->targets(invocation.has("--refresh"));
    if (!targets) {
        return failure(explained(targets.error(), *workspace, *account));
    }
    if (const auto stored = workspace->storageOutcome(); !stored) {
        return failure(stored.error());
    }
    Report report{targets->data, invocation.has("--paths") ? terminal.shownLines(pathLinesOf(targets->tree))
                                                           : linesOf(targets->tree, terminal)};
    if (!holdsTargets(targets->tree)) {
        report.text = nothingToChoose(targets->tree, displayName(account->serviceType())) + "\n";
        report.isNotice = true;
    }
    if (!targets->more.empty()) {
        report.members.set("hasMore", true);
        writeError("zelto: warning: " + targets->more + "\n");
    }
    return report;
}

} // namespace zelto::cli
