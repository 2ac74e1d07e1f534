#include "import/ImportWork.h"

#include "accounts/ServiceNames.h"

namespace zelto::cli {

Outcome<ImportWork> ImportWork::open(const Invocation& invocation) {
    const auto named = invocation.value("ID").value();
    if (const auto type = serviceNamed(named)) {
        if (const auto checked = checkImport(*type); !checked) {
            return failure(checked.error());
        }
    }
    auto account = AccountWork::open(invocation, named);
    if (!account) {
        return failure(account.error());
    }
    if (const auto checked = checkImport(account->account.serviceType()); !checked) {
        return failure(checked.error());
    }
    auto session = openImportSession(account->manager, account->account);
    return ImportWork{*std::move(account), std::move(session)};
}

} // namespace zelto::cli
