#pragma once

#include <ZeltoIntegrations/MCP/MCPHTTPTaskHandler.h>

#include <Platform/HTTP/URLSessionDataDelegate.h>
#include <Platform/HTTP/URLSessionTask.h>

#include <TrovenhalCommon/Protected.h>

#include <cstdint>
#include <memory>
#include <unordered_map>

namespace zelto {

// Hands what a session tells of its tasks to the handler of each. A handler leaves the map before it is
// completed, so that nothing reaches it after that.
class MCPHTTPURLSessionDelegate final : public URLSessionDataDelegate {
  public:
    // Before the task is resumed.
    void add(const std::shared_ptr<URLSessionDataTask>& task, std::shared_ptr<MCPHTTPTaskHandler> handler);

    // Nothing reaches its handler any more.
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
        std::shared_ptr<URLSessionDataTask> task; // to cancel it
    };

    std::shared_ptr<MCPHTTPTaskHandler> handlerOf(const URLSessionDataTask& task) const;
    std::shared_ptr<MCPHTTPTaskHandler> removeHandlerOf(const URLSessionDataTask& task);
    // Whether the task is to go on; else the handler is gone and has been completed.
    bool proceeds(const URLSessionDataTask& task, const MCPHTTPTaskEvent& event);

    Protected<std::unordered_map<std::int64_t, Entry>> handlersByTaskIdentifier_;
};

} // namespace zelto
