#include <Platform/HTTP/URLTransferInternal.h>

#include <Platform/HTTP/TrafficInternal.h>
#include <Platform/HTTP/TransferEngineInternal.h>
#include <Platform/Operations/ContainedException.h>

#include <algorithm>
#include <utility>

namespace zelto {
namespace {

// How much of a response may wait for the delegate before the transfer is paused.
constexpr std::size_t maximumPendingData = 256 * 1024;

// How much is reserved at most on the strength of a Content-Length.
constexpr std::uint64_t maximumReservedData = std::uint64_t{16} << 20;

} // namespace

// Cancelling the queue's operations must not keep a task from ending.
class URLTransfer::Delivery final : public Operation {
  public:
    explicit Delivery(std::shared_ptr<URLTransfer> transfer) : transfer_(std::move(transfer)) {}

  protected:
    void main() override { std::exchange(transfer_, nullptr)->deliver(); }

    void endBeforeStart() override { std::exchange(transfer_, nullptr)->schedule(); }

  private:
    std::shared_ptr<URLTransfer> transfer_;
};

URLTransfer::URLTransfer(std::shared_ptr<URLSessionState> session, std::int64_t identifier,
                         URLRequest request, DataTaskCompletion completion)
    : session_(std::move(session)), identifier_(identifier), hasCompletion_(static_cast<bool>(completion)),
      completion_(std::move(completion)), record_(RecordedTransfer::of(request)) {
    if (auto wire = wireRequest(request, request.url, session_->configuration)) {
        plan_.reset(new TransferPlan{std::move(request), *std::move(wire)});
    } else {
        error_ = std::move(wire.error());
    }
}

void URLTransfer::resume() {
    std::unique_lock lock(lock_);
    if (stage_ != Stage::made) {
        return;
    }
    stage_ = Stage::resumed;
    if (record_) {
        record_->begin();
    }
    if (plan_) {
        if (plan_->wire.isRouted) {
            countRoutedRequest();
        }
        lock.unlock();
        TransferEngine::shared().begin(shared_from_this());
        return;
    }
    endLocked(std::exchange(error_, std::nullopt));
    if (wantsDelivery()) {
        lock.unlock();
        schedule();
    }
}

void URLTransfer::cancel() {
    std::unique_ptr<TransferPlan> plan; // destroyed after the lock is released
    Data data;
    std::unique_lock lock(lock_);
    if (stage_ == Stage::delivered || (error_ && error_->code == URLErrorCode::cancelled)) {
        return;
    }
    const bool isUnderWay = stage_ == Stage::resumed;
    plan = std::move(plan_);
    data = std::exchange(data_, {});
    hasPendingResponse_ = false;
    endLocked(URLError{URLErrorCode::cancelled, "The request was cancelled."});
    const bool delivers = wantsDelivery();
    lock.unlock();
    if (isUnderWay) {
        TransferEngine::shared().stop(shared_from_this());
    }
    if (delivers) {
        schedule();
    }
}

void URLTransfer::taskWasReleased() {
    {
        const std::lock_guard guard(lock_);
        if (stage_ != Stage::made) {
            return;
        }
    }
    cancel();
}

std::unique_ptr<TransferPlan> URLTransfer::takePlan() {
    const std::lock_guard guard(lock_);
    return stage_ == Stage::resumed ? std::move(plan_) : nullptr;
}

void URLTransfer::receiveHead(std::shared_ptr<const HTTPURLResponse> response, std::uint64_t expectedLength) {
    std::unique_lock lock(lock_);
    if (stage_ != Stage::resumed) {
        return;
    }
    response_ = std::move(response);
    if (hasCompletion_) {
        data_.reserve(static_cast<std::size_t>(std::min(expectedLength, maximumReservedData)));
        return;
    }
    hasPendingResponse_ = true;
    if (wantsDelivery()) {
        lock.unlock();
        schedule();
    }
}

bool URLTransfer::receiveData(std::span<const std::uint8_t> data) {
    std::unique_lock lock(lock_);
    if (stage_ != Stage::resumed) {
        return true;
    }
    if (!hasCompletion_ && data_.size() >= maximumPendingData) {
        isHeldBack_ = true;
        return false;
    }
    data_.insert(data_.end(), data.begin(), data.end());
    if (record_) {
        record_->receive(data.size());
    }
    if (!hasCompletion_ && wantsDelivery()) {
        lock.unlock();
        schedule();
    }
    return true;
}

void URLTransfer::end(std::optional<URLError> error) {
    std::unique_lock lock(lock_);
    if (stage_ != Stage::resumed) {
        return;
    }
    endLocked(std::move(error));
    if (wantsDelivery()) {
        lock.unlock();
        schedule();
    }
}

void URLTransfer::endLocked(std::optional<URLError> error) {
    stage_ = Stage::ended;
    error_ = std::move(error);
    hasEnded_.store(true, std::memory_order_release);
}

// Whether the caller has to schedule a delivery.
bool URLTransfer::wantsDelivery() {
    return !std::exchange(isScheduled_, true);
}

void URLTransfer::schedule() {
    session_->delegateQueue->addOperation(std::make_shared<Delivery>(shared_from_this()));
}

void URLTransfer::deliver() {
    if (const auto task = task_.lock()) {
        if (deliverNext(*task)) {
            schedule();
        }
    } else {
        URLSessionDataTask standIn(shared_from_this());
        if (deliverNext(standIn)) {
            schedule();
        }
    }
}

// Makes one call or two, so that other tasks of the session get a share of the queue. Whether more is to be
// delivered.
bool URLTransfer::deliverNext(URLSessionDataTask& task) {
    std::unique_lock lock(lock_);
    if (std::exchange(hasPendingResponse_, false)) {
        lock.unlock();
        deliverResponse(task);
        lock.lock();
    }
    if (!hasCompletion_ && !data_.empty()) {
        deliverData(task, lock);
    }
    const bool hasMore = !hasCompletion_ && !data_.empty();
    if (stage_ == Stage::ended && !hasMore) {
        deliverEnd(task, lock);
        return false;
    }
    isScheduled_ = hasMore;
    return hasMore;
}

void URLTransfer::deliverResponse(URLSessionDataTask& task) {
    auto disposition = URLSessionResponseDisposition::allow;
    if (const auto delegate = session_->delegate()) {
        containingExceptions("A delegate of a session",
                             [&] { disposition = delegate->didReceiveResponse(task, response_); });
    }
    if (disposition == URLSessionResponseDisposition::cancel) {
        cancel();
    }
}

void URLTransfer::deliverData(URLSessionDataTask& task, std::unique_lock<std::mutex>& lock) {
    auto data = std::exchange(data_, std::exchange(spareData_, {}));
    lock.unlock();
    if (const auto delegate = session_->delegate()) {
        containingExceptions("A delegate of a session", [&] { delegate->didReceiveData(task, data); });
    }
    data.clear();
    lock.lock();
    spareData_ = std::move(data);
    if (std::exchange(isHeldBack_, false) && stage_ == Stage::resumed) {
        lock.unlock();
        TransferEngine::shared().proceed(shared_from_this());
        lock.lock();
    }
}

void URLTransfer::deliverEnd(URLSessionDataTask& task, std::unique_lock<std::mutex>& lock) {
    stage_ = Stage::delivered;
    const auto error = std::exchange(error_, std::nullopt);
    auto data = error ? std::nullopt : std::optional(std::exchange(data_, {}));
    auto completion = std::move(completion_);
    lock.unlock();
    if (record_) {
        record_->end(response_ ? std::optional(response_->statusCode()) : std::nullopt, error);
    }
    containingExceptions("The completion of a task", [&] {
        if (hasCompletion_) {
            completion(std::move(data), response_, error);
        } else if (const auto delegate = session_->delegate()) {
            delegate->didComplete(task, error);
        }
    });
    session_->taskEnded();
}

} // namespace zelto
