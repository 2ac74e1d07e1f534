#pragma once

#include "base/Outcome.h"

#include <ZeltoIntegrations/MCP/MCPTool.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zelto::cli {

// What a tool gave, as the command shows it.
struct McpContent {
    // Text as it came, one line for each file, as JSON what is neither. Control characters are escapes, but
    // for line ends and tabs of text.
    std::string text;
    JSONValue::Array saved;       // "item", "path" and "size" of each
    std::vector<Failure> unsaved; // the files that could not be saved
};

// With a folder, files are saved there: by a name that the server chose only after it was cleaned, never over
// another file. The result is emptied item by item, since both it and the text may be large.
McpContent contentOf(MCPToolCallResult result, const std::optional<std::filesystem::path>& folder);

// The same without the text, for a result that is shown otherwise.
McpContent savedContentOf(const MCPToolCallResult& result,
                          const std::optional<std::filesystem::path>& folder);

} // namespace zelto::cli
