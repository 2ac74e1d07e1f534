#pragma once

#include "Outcome.h"
#include "Terminal.h"

#include <ZeltoIntegrations/MCP/MCPTool.h>

#include <filesystem>
#include <optional>
#include <string>

namespace zelto::cli {

// What a tool gave, as the command shows it: its text, one line for each file in it, and as JSON what is
// neither. With a folder, files are saved there: by a name that the server chose only after it was cleaned,
// never over another file.
Outcome<Report> reportOf(const MCPToolCallResult& result, const std::optional<std::filesystem::path>& folder,
                         const Terminal& terminal);

} // namespace zelto::cli
