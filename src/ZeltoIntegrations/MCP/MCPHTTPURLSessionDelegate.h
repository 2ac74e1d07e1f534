#pragma once

#include <ZeltoIntegrations/MCP/MCPHTTPTaskHandler.h>

#include <Platform/HTTP/URLSessionDataDelegate.h>
#include <Platform/HTTP/URLSessionTask.h>

#include <TrovenhalCommon/Protected.h>

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace zelto {

// The calls of a transport: passes the events of a session's tasks to the handler of each call, and ends
// calls. A handler leaves before it is completed, so it gets no event after that. Any thread.
class MCPHTTPURLSessionDelegate final : public URLSessionDataDelegate {
  public:
    using Handler = std::shared_ptr<MCPHTTPTaskHandler>;
    using Task = std::shared_ptr<URLSessionDataTask>;

    // To be called before the task is resumed.
    void add(const Task& task, Handler handler);

    // A call without a task, since it waits for the provider of credentials.
    void addWaiting(Handler handler);

    // The task of a call that waited. False, without effect, if the call has ended meanwhile. To be called
    // before the task is resumed.
    bool start(const Task& task, const Handler& handler);

    // Completes a call that waited, unless it has ended meanwhile.
    void failWaiting(const Handler& handler, MCPError error);

    // Ends the call of this request with `cancelled`; false if there is none. A call that waits is completed
    // on this thread.
    bool cancel(const MCPRequestID& requestID);

    // Ends every call with `cancelled`.
    void cancelAll();

    URLSessionResponseDisposition
    didReceiveResponse(URLSessionDataTask& task, const std::shared_ptr<const URLResponse>& response) override;
    void didReceiveData(URLSessionDataTask& task, std::span<const std::uint8_t> data) override;
    void didComplete(URLSessionDataTask& task, const std::optional<URLError>& error) override;

  private:
    struct Entry {
        Handler handler;
        Task task; // for cancelling it
    };

    struct Calls {
        std::vector<Handler> waiting;
        std::unordered_map<std::int64_t, Entry> handlersByTaskIdentifier;
    };

    Handler handlerOf(const URLSessionDataTask& task) const;
    Handler removeHandlerOf(const URLSessionDataTask& task);
    static bool removeWaiting(Calls& calls, const Handler& handler);
    // Whether the task goes on; otherwise the handler has been removed and completed.
    bool proceeds(const URLSessionDataTask& task, const MCPHTTPTaskEvent& event);

    Protected<Calls> calls_;
};

} // namespace zelto
