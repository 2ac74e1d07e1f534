#include <Platform/HTTP/URLSession.h>

#include <Platform/HTTP/URLSessionStateInternal.h>
#include <Platform/HTTP/URLTransferInternal.h>

#include <utility>

namespace zelto {

URLSession::URLSession(URLSessionConfiguration configuration,
                       std::shared_ptr<URLSessionDataDelegate> delegate,
                       std::shared_ptr<OperationQueue> delegateQueue)
    : state_(std::make_shared<URLSessionState>(std::move(configuration), std::move(delegate),
                                               std::move(delegateQueue))) {}

URLSession::~URLSession() {
    state_->close();
}

std::shared_ptr<URLSessionDataTask> URLSession::dataTask(URLRequest request) {
    return makeTask(std::move(request), {});
}

std::shared_ptr<URLSessionDataTask> URLSession::dataTask(URLRequest request, DataTaskCompletion completion) {
    return makeTask(std::move(request), std::move(completion));
}

std::shared_ptr<URLSessionDataTask> URLSession::makeTask(URLRequest request, DataTaskCompletion completion) {
    const auto identifier = state_->addTask();
    if (!identifier) {
        completion.abandon();
        return nullptr;
    }
    auto transfer =
        std::make_shared<URLTransfer>(state_, *identifier, std::move(request), std::move(completion));
    auto task = std::make_shared<URLSessionDataTask>(transfer);
    transfer->setTask(task);
    return task;
}

void URLSession::finishTasksAndInvalidate() {
    state_->close();
}

const URLSessionConfiguration& URLSession::configuration() const {
    return state_->configuration;
}

} // namespace zelto
