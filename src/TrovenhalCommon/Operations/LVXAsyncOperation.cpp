#include <TrovenhalCommon/Operations/LVXAsyncOperation.h>

#include <Platform/Operations/ContainedException.h>
#include <Platform/Operations/ThreadPool.h>

#include <memory>
#include <utility>

namespace zelto {

// Held by all copies of the callback: once the last one is dropped, nobody is left to call it.
class LVXAsyncOperation::Ending {
  public:
    explicit Ending(std::shared_ptr<LVXAsyncOperation> operation) : operation_(std::move(operation)) {}

    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;

    ~Ending() {
        if (!hasCome_) {
            operation_->endDropped();
        }
    }

    void come() {
        hasCome_ = true;
        operation_->finish();
    }

  private:
    std::atomic<bool> hasCome_ = false;
    const std::shared_ptr<LVXAsyncOperation> operation_;
};

void LVXAsyncOperation::main() {
    mainThread_ = std::this_thread::get_id();
    auto self = std::static_pointer_cast<LVXAsyncOperation>(shared_from_this());
    auto ending = std::make_shared<Ending>(std::move(self));
    // Whoever still has the callback when the function throws ends the operation by it.
    containingExceptions("An operation",
                         [&] { asyncMain([ending = std::move(ending)] { ending->come(); }); });
    mainThread_ = std::thread::id();
    if (wasDroppedInMain_) {
        finish();
    }
}

// What is thrown out of main() is reported before the operation ends, so nothing ends it while that runs. An
// exception may be on its way, in which no code of others runs.
void LVXAsyncOperation::endDropped() noexcept {
    if (mainThread_ == std::this_thread::get_id()) {
        wasDroppedInMain_ = true;
        return;
    }
    auto self = std::static_pointer_cast<LVXAsyncOperation>(shared_from_this());
    containingExceptions("The end of an operation",
                         [&] { ThreadPool::shared().post([self = std::move(self)] { self->finish(); }); });
}

} // namespace zelto
