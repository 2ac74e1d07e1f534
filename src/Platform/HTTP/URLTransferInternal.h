#pragma once

// Internal to the transport: one task as seen by its users, the I/O thread and the delegate queue.

#include <Platform/HTTP/HTTPRulesInternal.h>
#include <Platform/HTTP/TransferRecordInternal.h>
#include <Platform/HTTP/URLSession.h>
#include <Platform/HTTP/URLSessionStateInternal.h>

#include <atomic>
#include <mutex>

namespace zelto {

class HTTPExchange;

// What the I/O thread needs to begin a transfer.
struct TransferPlan {
    URLRequest request;
    WireRequest wire;
};

// Ends once, by whichever comes first: the I/O thread with a response or an error, or cancel(). Until the
// completion is called, a cancel still replaces the result. Events are delivered on the delegate queue, by
// one operation at a time.
class URLTransfer final : public std::enable_shared_from_this<URLTransfer> {
  public:
    // Without a completion, the session's delegate receives the events.
    URLTransfer(std::shared_ptr<URLSessionState> session, std::int64_t identifier, URLRequest request,
                DataTaskCompletion completion);

    // Any thread.
    std::int64_t identifier() const { return identifier_; }

    URLSessionState& session() const { return *session_; }

    const std::shared_ptr<URLSessionState>& sharedSession() const { return session_; }

    bool hasEnded() const noexcept { return hasEnded_.load(std::memory_order_acquire); }

    // The task as the delegate knows it; set before anything begins.
    void setTask(const std::shared_ptr<URLSessionDataTask>& task) { task_ = task; }

    void resume();
    void cancel();
    void taskWasReleased();

    // Called on the I/O thread only, except to end what never begins. Events after the end are dropped.
    std::unique_ptr<TransferPlan> takePlan();
    void receiveHead(std::shared_ptr<const HTTPURLResponse> response, std::uint64_t expectedLength);
    // False, with nothing taken, while too much waits for the delegate; the engine is called when it may go
    // on.
    [[nodiscard]] bool receiveData(std::span<const std::uint8_t> data);
    void end(std::optional<URLError> error);

    HTTPExchange* exchange = nullptr; // while it is running

  private:
    class Delivery;
    enum class Stage { made, resumed, ended, delivered };

    void endLocked(std::optional<URLError> error);
    bool wantsDelivery();
    void schedule();
    void deliver();
    bool deliverNext(URLSessionDataTask& task);
    void deliverResponse(URLSessionDataTask& task);
    void deliverData(URLSessionDataTask& task, std::unique_lock<std::mutex>& lock);
    void deliverEnd(URLSessionDataTask& task, std::unique_lock<std::mutex>& lock);

    const std::shared_ptr<URLSessionState> session_;
    const std::int64_t identifier_;
    const bool hasCompletion_;
    std::weak_ptr<URLSessionDataTask> task_;
    std::atomic<bool> hasEnded_ = false;

    std::mutex lock_; // guards the members below
    Stage stage_ = Stage::made;
    bool isScheduled_ = false;
    bool isHeldBack_ = false;
    bool hasPendingResponse_ = false;
    std::unique_ptr<TransferPlan> plan_; // until it begins; null if the request cannot be sent
    std::shared_ptr<const HTTPURLResponse> response_;
    Data data_;                     // not delivered yet
    Data spareData_;                // empty; its memory is reused for the next data
    std::optional<URLError> error_; // set from the start if the request cannot be sent
    DataTaskCompletion completion_;
    std::unique_ptr<RecordedTransfer> record_; // null while nobody observes
};

} // namespace zelto
