#pragma once

#include <Platform/Date.h>

#include <memory>
#include <optional>

namespace zelto {

class MCPRunningCall;

struct MCPCallOptions {
    // For the whole call: what it waits for before it is sent, all of its requests, and the new session if
    // the old one has expired. After it the call ends with the URLError `timedOut`. Without one a call takes
    // as long as its transport lets it. Where the system gives the process no thread, nothing watches it.
    std::optional<TimeInterval> timeout = std::nullopt;
};

// The handle of one call of MCPClient, for ending that call alone. It need not be kept: dropping it leaves
// the call running. Copies are handles of the same call. Any thread.
class MCPCall {
  public:
    // A handle without a call.
    MCPCall() = default;
    explicit MCPCall(std::shared_ptr<MCPRunningCall> call);

    // Ends the call with the URLError `cancelled`, unless its last response has arrived or it has ended; the
    // session and all other calls stay. Its completion is called where that of a response would be, or within
    // this function if nothing of the call is under way: while it waits for the provider of credentials or
    // for a session to begin.
    void cancel() const;

  private:
    std::shared_ptr<MCPRunningCall> call_;
};

} // namespace zelto
