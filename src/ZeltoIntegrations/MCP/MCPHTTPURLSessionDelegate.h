#pragma once

#include <ZeltoIntegrations/MCP/MCPHTTPTaskHandler.h>

#include <Platform/HTTP/URLSessionDataDelegate.h>
#include <Platform/HTTP/URLSessionTask.h>

#include <TrovenhalCommon/Protected.h>

#include <cstdint>
#include <memory>
#include <unordered_map>

namespace zelto {

// Passes the events of a session's tasks to the handler of each. A handler leaves the map before it is
// completed, so it gets no event after that.
class MCPHTTPURLSessionDelegate final : public URLSessionDataDelegate {
  public:
    // To be called before the task is resumed.
    void add(const std::shared_ptr<URLSessionDataTask>& task, std::shared_ptr<MCPHTTPTaskHandler> handler);

    // The task's handler gets no more events.
    void remove(const URLSessionDataTask& task);

    // Cancels every task that has a handler.
    void cancelAll();

    URLSessionResponseDisposition
    didReceiveResponse(URLSessionDataTask& task, const std::shared_ptr<const URLResponse>& response) override;
    void didReceiveData(URLSessionDataTask& task, std::span<const std::uint8_t> data) override;
    void didComplete(URLSessionDataTask& task, const std::optional<URLError>& error) override;

  private:
    struct Entry {
        std::shared_ptr<MCPHTTPTaskHandler> handler;
        std::shared_ptr<URLSessionDataTask> task; // for cancelling it
    };

    std::shared_ptr<MCPHTTPTaskHandler> handlerOf(const URLSessionDataTask& task) const;
    std::shared_ptr<MCPHTTPTaskHandler> removeHandlerOf(const URLSessionDataTask& task);
    // Whether the task goes on; otherwise the handler has been removed and completed.
    bool proceeds(const URLSessionDataTask& task, const MCPHTTPTaskEvent& event);

    Protected<std::unordered_map<std::int64_t, Entry>> handlersByTaskIdentifier_;
};

} // namespace zelto
