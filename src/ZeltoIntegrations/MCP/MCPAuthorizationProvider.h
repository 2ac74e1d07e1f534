#pragma once

#include <ZeltoIntegrations/MCP/MCPError.h>

#include <map>
#include <string>

namespace zelto {

// Supplies the credentials of a server; implemented by the host.
class MCPAuthorizationProvider {
  public:
    using Headers = std::map<std::string, std::string>;

    virtual ~MCPAuthorizationProvider() = default;

    // Called before every request, notification and disconnect. The fields replace those of the same name
    // that the transport has set. The completion may be called later and on any thread. With an error the
    // call ends with it, and nothing is sent; so it does when this throws, or the completion is destroyed
    // without being called.
    virtual void authorizationHeaders(MCPCompletion<Headers> completion) = 0;
};

} // namespace zelto
