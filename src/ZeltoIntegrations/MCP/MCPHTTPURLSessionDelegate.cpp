#include <ZeltoIntegrations/MCP/MCPHTTPURLSessionDelegate.h>

#include <ZeltoIntegrations/MCP/MCPDecodingInternal.h>

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

} // namespace

void MCPHTTPURLSessionDelegate::add(const std::shared_ptr<URLSessionDataTask>& task,
                                    std::shared_ptr<MCPHTTPTaskHandler> handler) {
    handlersByTaskIdentifier_.modify([&](auto& entries) {
        entries.insert_or_assign(task->taskIdentifier(), Entry{std::move(handler), task});
    });
}

void MCPHTTPURLSessionDelegate::remove(const URLSessionDataTask& task) {
    removeHandlerOf(task);
}

void MCPHTTPURLSessionDelegate::cancelAll() {
    const auto tasks = handlersByTaskIdentifier_.read([](const auto& entries) {
        std::vector<std::shared_ptr<URLSessionDataTask>> all;
        for (const auto& [identifier, entry] : entries) {
            all.push_back(entry.task);
        }
        return all;
    });
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

std::shared_ptr<MCPHTTPTaskHandler>
MCPHTTPURLSessionDelegate::handlerOf(const URLSessionDataTask& task) const {
    return handlersByTaskIdentifier_.read([&](const auto& entries) {
        const auto found = entries.find(task.taskIdentifier());
        return found == entries.end() ? nullptr : found->second.handler;
    });
}

std::shared_ptr<MCPHTTPTaskHandler>
MCPHTTPURLSessionDelegate::removeHandlerOf(const URLSessionDataTask& task) {
    // The task is released after the lock.
    auto node = handlersByTaskIdentifier_.modify(
        [&](auto& entries) { return entries.extract(task.taskIdentifier()); });
    return node ? std::move(node.mapped().handler) : nullptr;
}

} // namespace zelto
