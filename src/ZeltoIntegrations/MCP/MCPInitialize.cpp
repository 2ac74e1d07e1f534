#include <ZeltoIntegrations/MCP/MCPInitialize.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(MCPImplementationInfo, name, version);
ZELTO_JSON_RECORD(MCPInitializeParams, protocolVersion, capabilities, clientInfo);
ZELTO_JSON_RECORD(MCPInitializeResult, protocolVersion, capabilities, serverInfo, instructions);

} // namespace zelto
