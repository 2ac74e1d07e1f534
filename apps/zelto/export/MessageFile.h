#pragma once

#include "base/Outcome.h"
#include "commandline/CommandLine.h"

#include <ZeltoIntegrations/Content/IntegrationsDataInteractorProtocol.h>

#include <memory>

namespace zelto::cli {

// The content of the MAIL argument: a mail, a meeting note (.json), or a mail on standard input (-).
Outcome<std::shared_ptr<IntegrationsDataInteractorProtocol>> openMessage(const Invocation& invocation);

} // namespace zelto::cli
