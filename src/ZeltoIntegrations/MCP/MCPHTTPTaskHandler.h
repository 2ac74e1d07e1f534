#pragma once

#include <ZeltoIntegrations/MCP/MCPError.h>

#include <Platform/HTTP/URLResponse.h>

#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

namespace zelto {

// What happens to a task: the head of the answer, or a piece of its body, which is valid during the call.
struct MCPHTTPTaskEvent {
    std::variant<std::shared_ptr<const HTTPURLResponse>, std::string_view> value;
};

// What a handler makes of it: go on, or end the task with an outcome.
struct MCPHTTPTaskDecision {
    std::optional<MCPResult<void>> outcome; // none to go on

    static MCPHTTPTaskDecision continueLoading() { return {}; }

    static MCPHTTPTaskDecision finish(MCPResult<void> outcome) { return {std::move(outcome)}; }
};

// Follows one task. Called on the session's delegate queue alone, `complete` last and once; where a task
// never begins, `complete` comes on the thread that decided so.
class MCPHTTPTaskHandler {
  public:
    virtual ~MCPHTTPTaskHandler() = default;

    virtual MCPHTTPTaskDecision handle(const MCPHTTPTaskEvent& event) = 0;
    virtual void complete(MCPResult<void> outcome) = 0;
};

} // namespace zelto
