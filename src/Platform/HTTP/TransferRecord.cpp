#include <Platform/HTTP/TransferRecord.h>

#include <Platform/HTTP/TransferRecordInternal.h>
#include <Platform/Operations/ContainedException.h>

#include <mutex>
#include <utility>

namespace zelto {

namespace {

using Observer = std::function<void(const TransferRecord&)>;

struct Observing {
    std::mutex lock;
    std::shared_ptr<const Observer> observer;
};

// Tasks may end while the process does.
Observing& observing() {
    static auto* shared = new Observing;
    return *shared;
}

std::shared_ptr<const Observer> presentObserver() {
    const std::lock_guard guard(observing().lock);
    return observing().observer;
}

} // namespace

void setTransferObserver(std::function<void(const TransferRecord&)> observer) {
    auto shared = observer ? std::make_shared<const Observer>(std::move(observer)) : nullptr;
    const std::lock_guard guard(observing().lock);
    observing().observer.swap(shared);
}

std::unique_ptr<RecordedTransfer> RecordedTransfer::of(const URLRequest& request) {
    if (!presentObserver()) {
        return nullptr;
    }
    TransferRecord record{.method = request.method, .url = request.url, .error = {}};
    record.requestSize = request.body ? request.body->size() : 0;
    return std::unique_ptr<RecordedTransfer>(new RecordedTransfer(std::move(record)));
}

void RecordedTransfer::end(std::optional<int> status, const std::optional<URLError>& error) {
    const auto observer = presentObserver();
    if (!observer) {
        return;
    }
    record_.status = status;
    record_.error = error ? std::optional(error->code) : std::nullopt;
    record_.duration = TimeInterval(std::chrono::duration<double>(Clock::now() - begunAt_).count());
    containingExceptions("An observer of transfers", [&] { (*observer)(record_); });
}

} // namespace zelto
