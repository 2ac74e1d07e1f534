#pragma once

#include "base/Outcome.h"

#include <ZeltoIntegrations/MCP/MCPError.h>

namespace zelto::cli {

// The failure of an operation on a Model Context Protocol server, by its case's name and with its payload,
// but without the result of a tool that failed.
Failure failureOf(const MCPError& error);

} // namespace zelto::cli
