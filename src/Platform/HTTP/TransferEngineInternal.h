#pragma once

// For the transport alone: the I/O thread of the process.

#include <Platform/FileDescriptor.h>
#include <Platform/HTTP/HTTPExchangeInternal.h>
#include <Platform/HTTP/URLTransferInternal.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <sys/types.h>

namespace zelto {

// Drives all transfers on one thread. Begins no more at a time than a session's configuration says, nor more
// in all than the process has descriptors for. Lives until the process ends; its thread stops before what
// libcurl stands on is torn down.
class TransferEngine {
  public:
    static TransferEngine& shared();

    // Any thread. What begins when the process ends is cancelled.
    void begin(std::shared_ptr<URLTransfer> transfer);
    // The transfer has been cancelled.
    void stop(std::shared_ptr<URLTransfer> transfer);
    // The delegate has room again.
    void proceed(std::shared_ptr<URLTransfer> transfer);

  private:
    using Clock = HTTPExchange::Clock;

    struct Command {
        enum class Kind { begin, stop, proceed } kind;
        std::shared_ptr<URLTransfer> transfer;
    };

    TransferEngine();

    bool post(Command command); // false when the thread stops
    void wake();
    void startThread();
    static void stopThread();
    void run();
    void wait();
    void obey();
    void collectFinished();
    void endOverdue();

    void start(const std::shared_ptr<URLTransfer>& transfer, std::unique_ptr<TransferPlan> plan);
    void fillLane(const std::shared_ptr<URLSessionState>& session);
    void fillLanes();
    void add(HTTPExchange& exchange);
    void stopExchange(HTTPExchange& exchange);
    void finish(HTTPExchange& exchange, CURLcode code);
    void leaveLane(const URLTransfer& transfer);
    void retire(HTTPExchange& exchange);

    CURLM* const multi_;
    CURLSH* const share_;
    const pid_t process_;
    const FileDescriptor wakeUp_; // an eventfd, which costs a third of curl_multi_wakeup
    HTTPExchange::Rounds rounds_;
    std::vector<std::unique_ptr<HTTPExchange>> running_;
    std::vector<std::unique_ptr<HTTPExchange>> idle_;
    std::deque<std::shared_ptr<URLSessionState>> heldLanes_;
    std::vector<Command> taken_;

    std::thread thread_;

    std::mutex lock_; // guards what follows
    std::condition_variable hasStopped_;
    std::vector<Command> commands_;
    bool stops_ = false;
    bool isRunning_ = false;
    bool isWaiting_ = false;
};

} // namespace zelto
