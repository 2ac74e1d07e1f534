#pragma once

// For the transport alone: one task between those who use it, the I/O thread and the delegate queue.

#include <Platform/HTTP/HTTPRulesInternal.h>
#include <Platform/HTTP/URLSession.h>
#include <Platform/HTTP/URLSessionStateInternal.h>

#include <atomic>
#include <mutex>

namespace zelto {

class HTTPExchange;

// What the I/O thread needs to begin.
struct TransferPlan {
    URLRequest request;
    WireRequest wire;
};

// Ends once, by whoever comes first: the I/O thread with an answer or an error, or cancel(). A cancel counts
// until the completion is called. What has come is told on the delegate queue, by one operation at a time.
class URLTransfer final : public std::enable_shared_from_this<URLTransfer> {
  public:
    // Without a completion the session's delegate hears of it.
    URLTransfer(std::shared_ptr<URLSessionState> session, std::int64_t identifier, URLRequest request,
                DataTaskCompletion completion);

    // Any thread.
    std::int64_t identifier() const { return identifier_; }

    URLSessionState& session() const { return *session_; }

    const std::shared_ptr<URLSessionState>& sharedSession() const { return session_; }

    bool hasEnded() const noexcept { return hasEnded_.load(std::memory_order_acquire); }

    // Whom the delegate knows the task as; told before anything begins.
    void setTask(const std::shared_ptr<URLSessionDataTask>& task) { task_ = task; }

    void resume();
    void cancel();
    void taskWasReleased();

    // The I/O thread's alone, but for the end of what it does not begin. What is told after the end is
    // dropped.
    std::unique_ptr<TransferPlan> takePlan();
    void receiveHead(std::shared_ptr<const HTTPURLResponse> response, std::uint64_t expectedLength);
    // False, with nothing taken, while the delegate has enough to do; the engine hears when it goes on.
    [[nodiscard]] bool receiveData(std::span<const std::uint8_t> data);
    void end(std::optional<URLError> error);

    HTTPExchange* exchange = nullptr; // while it is under way

  private:
    class Delivery;
    enum class Stage { made, resumed, ended, told };

    void endLocked(std::optional<URLError> error);
    bool wantsDelivery();
    void schedule();
    void deliver();
    bool deliverNext(URLSessionDataTask& task);
    void tellResponse(URLSessionDataTask& task);
    void tellData(URLSessionDataTask& task, std::unique_lock<std::mutex>& lock);
    void tellEnd(URLSessionDataTask& task, std::unique_lock<std::mutex>& lock);

    const std::shared_ptr<URLSessionState> session_;
    const std::int64_t identifier_;
    const bool hasCompletion_;
    std::weak_ptr<URLSessionDataTask> task_;
    std::atomic<bool> hasEnded_ = false;

    std::mutex lock_; // guards what follows
    Stage stage_ = Stage::made;
    bool isScheduled_ = false;
    bool isHeldBack_ = false;
    bool hasUntoldResponse_ = false;
    std::unique_ptr<TransferPlan> plan_; // until it begins; nothing for what is not sent
    std::shared_ptr<const HTTPURLResponse> response_;
    Data data_;                     // not told yet
    Data toldData_;                 // empty: its memory takes what comes next
    std::optional<URLError> error_; // of what is not sent, from the start
    DataTaskCompletion completion_;
};

} // namespace zelto
