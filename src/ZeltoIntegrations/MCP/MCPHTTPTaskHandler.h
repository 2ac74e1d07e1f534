#pragma once

#include <ZeltoIntegrations/MCP/MCPError.h>
#include <ZeltoIntegrations/MCP/MCPRequestID.h>

#include <Platform/HTTP/URLResponse.h>

#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

namespace zelto {

// An event of a task: the head of the response, or a piece of its body, which is valid during the call.
struct MCPHTTPTaskEvent {
    std::variant<std::shared_ptr<const HTTPURLResponse>, std::string_view> value;
};

// A handler's reaction: go on, or end the task with an outcome.
struct MCPHTTPTaskDecision {
    std::optional<MCPResult<void>> outcome; // absent to go on

    static MCPHTTPTaskDecision continueLoading() { return {}; }

    static MCPHTTPTaskDecision finish(MCPResult<void> outcome) { return {std::move(outcome)}; }
};

// Handles the events of one task. Called on the session's delegate queue only, `complete` last and once; if a
// task never begins, `complete` is called on the thread that decided so.
class MCPHTTPTaskHandler {
  public:
    virtual ~MCPHTTPTaskHandler() = default;

    // Of the message that the handler is for; null if that has none.
    virtual const MCPRequestID* requestID() const { return nullptr; }

    virtual MCPHTTPTaskDecision handle(const MCPHTTPTaskEvent& event) = 0;
    virtual void complete(MCPResult<void> outcome) = 0;
};

} // namespace zelto
