#pragma once

#include "base/Outcome.h"
#include "commandline/CommandLine.h"

#include <ZeltoHost/Content/ContentNotes.h>
#include <ZeltoIntegrations/Content/IntegrationsDataInteractorProtocol.h>

#include <memory>

namespace zelto::cli {

// The content of the MAIL argument: a mail, a meeting note (.json), or a mail on standard input (-). `notes`
// gets what an export does not show of it.
Outcome<std::shared_ptr<IntegrationsDataInteractorProtocol>> openMessage(const Invocation& invocation,
                                                                         std::shared_ptr<ContentNotes> notes);

} // namespace zelto::cli
