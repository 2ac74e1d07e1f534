#pragma once

#include <ZeltoIntegrations/MCP/MCPError.h>

#include <map>
#include <string>

namespace zelto {

// Where a host supplies the credentials of a server.
class MCPAuthorizationProvider {
  public:
    using Headers = std::map<std::string, std::string>;

    virtual ~MCPAuthorizationProvider() = default;

    // Asked before every request, notification and disconnect. The fields replace those of the same name that
    // the transport has set. It may answer later and on any thread; an error ends that call, and nothing is
    // sent. So do an exception and a completion that is let go of uncalled.
    virtual void authorizationHeaders(MCPCompletion<Headers> completion) = 0;
};

} // namespace zelto
