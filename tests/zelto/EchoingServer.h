#pragma once

#include <Support/MCPServer.h>

namespace zelto {

// A server whose tools give the result that they are asked for in the arguments' "result".
MCPServer::Handler echoing();

} // namespace zelto
