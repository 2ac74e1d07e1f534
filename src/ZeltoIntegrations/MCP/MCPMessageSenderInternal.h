#pragma once

// For sources only.

#include <ZeltoIntegrations/MCP/MCPOnceCompletion.h>
#include <ZeltoIntegrations/MCP/MCPRunningCallInternal.h>
#include <ZeltoIntegrations/MCP/MCPTransport.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace zelto {

// Sends the messages of calls, each of which ends when its call does. A value; all functions may be called on
// any thread.
class MCPMessageSender {
  public:
    using Call = std::shared_ptr<MCPRunningCall>;

    explicit MCPMessageSender(std::shared_ptr<MCPTransport> transport) : transport_(std::move(transport)) {}

    MCPTransport& transport() const { return *transport_; }

    // Gives the "result" of the response; an "error" is a failure. A request that must go in a session fails
    // with `sessionExpired`, unsent, if the transport holds none any more.
    enum class Place { anywhere, inSession };
    void request(const Call& call, Place place, std::string method, std::optional<JSONValue> params,
                 MCPCompletion<JSONValue> completion) const;

    void notify(const Call& call, std::string method, MCPCompletion<void> completion) const;

    // Tells the server that the session ends.
    void disconnect(const Call& call, MCPCompletion<void> completion) const;

  private:
    std::shared_ptr<MCPTransport> transport_;
};

} // namespace zelto
