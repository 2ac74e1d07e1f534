#include <Platform/Operations/OperationCoreInternal.h>

#include <Platform/Operations/ContainedException.h>
#include <Platform/Operations/OperationLinksInternal.h>
#include <Platform/Operations/OperationQueue.h>
#include <Platform/Operations/ThreadPool.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace zelto {
namespace {

// How long one queue may occupy a thread while other work waits for one.
constexpr std::chrono::milliseconds timeSlice{1};

} // namespace

void ReadyOperations::push(Operation& operation, std::uint64_t order) {
    if (inOrder_.empty() || inOrder_.back().first < order) {
        inOrder_.emplace_back(order, &operation);
    } else {
        late_.emplace(order, &operation);
    }
}

Operation& ReadyOperations::pop() {
    if (late_.empty() || (!inOrder_.empty() && inOrder_.front().first < late_.begin()->first)) {
        auto& operation = *inOrder_.front().second;
        inOrder_.pop_front();
        trim();
        return operation;
    }
    return *late_.extract(late_.begin()).mapped();
}

void ReadyOperations::erase(std::uint64_t order) {
    if (late_.erase(order) == 0) {
        std::ranges::lower_bound(inOrder_, order, {}, &Entry::first)->second = nullptr;
        trim();
    }
}

void ReadyOperations::trim() {
    while (!inOrder_.empty() && !inOrder_.front().second) {
        inOrder_.pop_front();
    }
    while (!inOrder_.empty() && !inOrder_.back().second) {
        inOrder_.pop_back();
    }
}

OperationCore::OperationCore(std::string name)
    : name_(std::move(name)), limit_(OperationQueue::defaultMaxConcurrentOperationCount) {}

std::string OperationCore::name() const {
    const std::lock_guard lock(mutex_);
    return name_;
}

void OperationCore::setName(std::string name) {
    const std::lock_guard lock(mutex_);
    name_ = std::move(name);
}

int OperationCore::limit() const {
    const std::lock_guard lock(mutex_);
    return limit_;
}

void OperationCore::setLimit(int limit) {
    std::unique_lock lock(mutex_);
    limit_ = limit < 0 ? OperationQueue::defaultMaxConcurrentOperationCount : limit;
    if (wantsJob()) {
        lock.unlock();
        postJob();
    }
}

bool OperationCore::isSuspended() const {
    const std::lock_guard lock(mutex_);
    return isSuspended_;
}

void OperationCore::setSuspended(bool suspended) {
    std::unique_lock lock(mutex_);
    isSuspended_ = suspended;
    if (wantsJob()) {
        lock.unlock();
        postJob();
    }
}

bool OperationCore::add(std::span<const std::shared_ptr<Operation>> operations) {
    bool taken = true;
    std::unique_lock lock(mutex_);
    for (const auto& each : operations) {
        taken = list(each) && taken;
    }
    if (wantsJob()) {
        lock.unlock();
        postJob();
    }
    return taken;
}

bool OperationCore::list(const std::shared_ptr<Operation>& operation) {
    const std::lock_guard guard(operation->lock_);
    if (operation->core_) {
        return false;
    }
    if (operation->stage_ != Operation::pending) {
        return operation->isCancelled();
    }
    operation->core_ = shared_from_this();
    operation->keptByQueue_ = operation;
    operation->order_ = added_++;
    operation->isListed_ = true;
    operation->previous_ = std::exchange(last_, operation.get());
    (operation->previous_ ? operation->previous_->next_ : first_) = operation.get();
    ++count_;
    if (operation->unfinishedDependencies_ == 0) {
        makeReady(*operation);
    }
    return true;
}

void OperationCore::makeReady(Operation& operation) {
    if (operation.isListed_ && !std::exchange(operation.isReadyListed_, true)) {
        ready_.push(operation, operation.order_);
    }
}

// Gives the queue's reference, to be dropped when no lock is held.
std::shared_ptr<Operation> OperationCore::unlist(Operation& operation) {
    if (!std::exchange(operation.isListed_, false)) {
        return nullptr;
    }
    (operation.previous_ ? operation.previous_->next_ : first_) = operation.next_;
    (operation.next_ ? operation.next_->previous_ : last_) = operation.previous_;
    slots_ -= std::exchange(operation.holdsSlot_, false);
    if (std::exchange(operation.isReadyListed_, false)) {
        ready_.erase(operation.order_);
    }
    if (--count_ == 0) {
        empty_.notify_all();
    }
    return std::move(operation.keptByQueue_);
}

OperationList OperationCore::operations() const {
    const std::lock_guard lock(mutex_);
    OperationList all;
    all.reserve(count_);
    for (auto* each = first_; each; each = each->next_) {
        // A finished one is still listed for a moment.
        if (!each->isFinished()) {
            all.push_back(each->keptByQueue_);
        }
    }
    return all;
}

void OperationCore::waitUntilEmpty() {
    std::unique_lock lock(mutex_);
    if (count_ != 0) {
        const ThreadPool::BlockingScope waiting;
        empty_.wait(lock, [this] { return count_ == 0; });
    }
}

void OperationCore::release() {
    OperationList unowned;
    OperationList neverToBegin;
    {
        const std::lock_guard lock(mutex_);
        isReleased_ = true;
        for (auto* each = first_; each; each = each->next_) {
            if (each->holdsSlot_) {
                unowned.push_back(std::move(each->keptByQueue_));
            } else if (isSuspended_ || limit_ == 0) {
                neverToBegin.push_back(each->keptByQueue_);
            }
        }
    }
    for (const auto& each : neverToBegin) {
        each->cancel();
    }
}

void OperationCore::becameReady(Operation& operation) {
    std::unique_lock lock(mutex_);
    makeReady(operation);
    if (wantsJob()) {
        lock.unlock();
        postJob();
    }
}

void OperationCore::endCancelled(std::shared_ptr<Operation> operation) {
    std::unique_lock lock(mutex_);
    cancelled_.push_back(std::move(operation));
    if (wantsJob()) {
        lock.unlock();
        postJob();
    }
}

void OperationCore::remove(Operation& operation) {
    std::shared_ptr<Operation> kept;
    std::unique_lock lock(mutex_);
    kept = unlist(operation);
    if (wantsJob()) {
        lock.unlock();
        postJob();
    }
}

bool OperationCore::canRun() const {
    const bool hasRoom = limit_ < 0 || slots_ < static_cast<std::size_t>(limit_);
    return !cancelled_.empty() || (hasRoom && !isSuspended_ && !ready_.isEmpty());
}

// The next operation to run; it has begun already.
std::shared_ptr<Operation> OperationCore::take() {
    while (canRun()) {
        if (!cancelled_.empty()) {
            auto operation = std::move(cancelled_.front());
            cancelled_.pop_front();
            return operation;
        }
        auto& operation = ready_.pop();
        operation.isReadyListed_ = false;
        if (operation.begin()) {
            operation.holdsSlot_ = true;
            ++slots_;
            return isReleased_ ? std::move(operation.keptByQueue_) : operation.keptByQueue_;
        }
    }
    return nullptr;
}

// Whether the caller has to post a job after it has released the lock.
bool OperationCore::wantsJob() {
    return !isJobPosted_ && canRun() && (isJobPosted_ = true);
}

void OperationCore::postJob() {
    ThreadPool::shared().post([core = shared_from_this()] { core->drain(); });
}

void OperationCore::drain() {
    const auto& pool = ThreadPool::shared();
    const auto start = std::chrono::steady_clock::now();
    OperationList dropped;
    OperationList released;
    std::unique_lock lock(mutex_);
    isJobPosted_ = false;
    while (auto operation = take()) {
        const bool needsHelp = wantsJob();
        lock.unlock();
        dropped.clear();
        if (needsHelp) {
            postJob();
        }
        const bool endsHere = run(operation, released);
        if (!endsHere) {
            operation = nullptr;
        }
        lock.lock();
        for (auto& each : released) {
            makeReady(*each);
        }
        dropped.swap(released);
        if (endsHere) {
            auto kept = unlist(*operation);
            dropped.push_back(std::move(operation));
            dropped.push_back(std::move(kept));
        }
        const bool othersWait = pool.waiting() > std::size_t{isJobPosted_};
        if (othersWait && std::chrono::steady_clock::now() - start > timeSlice) {
            break;
        }
    }
    const bool goesOn = wantsJob();
    lock.unlock();
    if (goesOn) {
        postJob();
    }
}

// True if the operation has finished and is still to be removed from the queue; those in `released` are then
// still to be made ready.
bool OperationCore::run(const std::shared_ptr<Operation>& operation, OperationList& released) {
    if (operation->stage_ == Operation::ending) {
        operation->performEnding();
        return false;
    }
    if (!operation->perform()) {
        return false;
    }
    auto conclusion = operation->conclude();
    if (!conclusion.hasFinished) {
        return false;
    }
    if (conclusion.links && conclusion.links->completionBlock) {
        operation->end(std::move(conclusion));
        return false;
    }
    if (conclusion.links) {
        Operation::releaseDependants(*conclusion.links, operation, this, &released);
    }
    return true;
}

} // namespace zelto
