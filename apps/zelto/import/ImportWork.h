#pragma once

#include "accounts/AccountWork.h"
#include "import/ImportTable.h"

namespace zelto::cli {

// All that a command about a drive works with.
struct ImportWork {
    AccountWork account;
    ImportSession session;

    static Outcome<ImportWork> open(const Invocation& invocation);
};

} // namespace zelto::cli
