#include <ZeltoIntegrations/MCP/MCPHTTPURLSessionDelegate.h>

#include <ZeltoIntegrations/MCP/MCPDecodingInternal.h>

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

namespace zelto {

namespace {

MCPHTTPTaskDecision decisionOf(MCPHTTPTaskHandler& handler, const MCPHTTPTaskEvent& event) {
    try {
        return handler.handle(event);
    } catch (const std::bad_alloc&) {
        return MCPHTTPTaskDecision::finish(failure(tooLargeForMemory()));
    }
}

MCPError cancelled() {
    return URLError{URLErrorCode::cancelled, "The request was cancelled."};
}

} // namespace

void MCPHTTPURLSessionDelegate::add(const Task& task, Handler handler) {
    calls_.modify([&](Calls& calls) {
        calls.handlersByTaskIdentifier.insert_or_assign(task->taskIdentifier(),
                                                        Entry{std::move(handler), task});
    });
}

void MCPHTTPURLSessionDelegate::addWaiting(Handler handler) {
    calls_.modify([&](Calls& calls) { calls.waiting.push_back(std::move(handler)); });
}

bool MCPHTTPURLSessionDelegate::start(const Task& task, const Handler& handler) {
    return calls_.modify([&](Calls& calls) {
        return removeWaiting(calls, handler) &&
               calls.handlersByTaskIdentifier.emplace(task->taskIdentifier(), Entry{handler, task}).second;
    });
}

void MCPHTTPURLSessionDelegate::failWaiting(const Handler& handler, MCPError error) {
    if (calls_.modify([&](Calls& calls) { return removeWaiting(calls, handler); })) {
        handler->complete(failure(std::move(error)));
    }
}

bool MCPHTTPURLSessionDelegate::cancel(const MCPRequestID& requestID) {
    const auto isMeant = [&](const Handler& handler) {
        return handler->requestID() && *handler->requestID() == requestID;
    };
    Handler waiting;
    const auto task = calls_.modify([&](Calls& calls) -> Task {
        const auto found = std::ranges::find_if(calls.waiting, isMeant);
        if (found != calls.waiting.end()) {
            waiting = *found;
            calls.waiting.erase(found);
            return nullptr;
        }
        for (const auto& [identifier, entry] : calls.handlersByTaskIdentifier) {
            if (isMeant(entry.handler)) {
                return entry.task;
            }
        }
        return nullptr;
    });
    if (waiting) {
        waiting->complete(failure(cancelled()));
    } else if (task) {
        task->cancel();
    }
    return waiting || task;
}

void MCPHTTPURLSessionDelegate::cancelAll() {
    std::vector<Task> tasks;
    const auto waiting = calls_.modify([&](Calls& calls) {
        for (const auto& [identifier, entry] : calls.handlersByTaskIdentifier) {
            tasks.push_back(entry.task);
        }
        return std::exchange(calls.waiting, {});
    });
    for (const auto& each : waiting) {
        each->complete(failure(cancelled()));
    }
    for (const auto& each : tasks) {
        each->cancel();
    }
}

URLSessionResponseDisposition
MCPHTTPURLSessionDelegate::didReceiveResponse(URLSessionDataTask& task,
                                              const std::shared_ptr<const URLResponse>& response) {
    const auto http = std::dynamic_pointer_cast<const HTTPURLResponse>(response);
    if (!http) {
        if (const auto handler = removeHandlerOf(task)) {
            handler->complete(failure(MCPError(MCPClientError::invalidHTTPResponse())));
        }
        return URLSessionResponseDisposition::cancel;
    }
    return proceeds(task, {http}) ? URLSessionResponseDisposition::allow
                                  : URLSessionResponseDisposition::cancel;
}

void MCPHTTPURLSessionDelegate::didReceiveData(URLSessionDataTask& task, std::span<const std::uint8_t> data) {
    const std::string_view bytes(reinterpret_cast<const char*>(data.data()), data.size());
    if (!proceeds(task, {bytes})) {
        task.cancel();
    }
}

void MCPHTTPURLSessionDelegate::didComplete(URLSessionDataTask& task, const std::optional<URLError>& error) {
    if (const auto handler = removeHandlerOf(task)) {
        handler->complete(error ? failure(MCPError(*error)) : MCPResult<void>());
    }
}

bool MCPHTTPURLSessionDelegate::proceeds(const URLSessionDataTask& task, const MCPHTTPTaskEvent& event) {
    const auto handler = handlerOf(task);
    if (!handler) {
        return false;
    }
    auto decision = decisionOf(*handler, event);
    if (!decision.outcome) {
        return true;
    }
    removeHandlerOf(task);
    handler->complete(*std::move(decision.outcome));
    return false;
}

MCPHTTPURLSessionDelegate::Handler
MCPHTTPURLSessionDelegate::handlerOf(const URLSessionDataTask& task) const {
    return calls_.read([&](const Calls& calls) {
        const auto found = calls.handlersByTaskIdentifier.find(task.taskIdentifier());
        return found == calls.handlersByTaskIdentifier.end() ? nullptr : found->second.handler;
    });
}

MCPHTTPURLSessionDelegate::Handler
MCPHTTPURLSessionDelegate::removeHandlerOf(const URLSessionDataTask& task) {
    // The task is released after the lock.
    auto node = calls_.modify(
        [&](Calls& calls) { return calls.handlersByTaskIdentifier.extract(task.taskIdentifier()); });
    return node ? std::move(node.mapped().handler) : nullptr;
}

bool MCPHTTPURLSessionDelegate::removeWaiting(Calls& calls, const Handler& handler) {
    return std::erase(calls.waiting, handler) > 0;
}

} // namespace zelto
