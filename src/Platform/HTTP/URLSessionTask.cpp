#include <Platform/HTTP/URLSessionTask.h>

#include <Platform/HTTP/URLTransferInternal.h>

#include <utility>

namespace zelto {

URLSessionDataTask::URLSessionDataTask(std::shared_ptr<URLTransfer> transfer)
    : transfer_(std::move(transfer)) {}

URLSessionDataTask::~URLSessionDataTask() {
    transfer_->taskWasReleased();
}

std::int64_t URLSessionDataTask::taskIdentifier() const {
    return transfer_->identifier();
}

void URLSessionDataTask::resume() {
    transfer_->resume();
}

void URLSessionDataTask::cancel() {
    transfer_->cancel();
}

} // namespace zelto
