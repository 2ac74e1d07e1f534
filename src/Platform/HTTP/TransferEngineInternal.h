#pragma once

// Internal to the transport: the I/O thread of the process.

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

// Drives all transfers on one thread. The number of simultaneous transfers is limited per session by its
// configuration, and for the process by its file descriptors. Lives until the process ends; its thread stops
// before libcurl and the libraries below it are torn down.
class TransferEngine {
  public:
    static TransferEngine& shared();

    // Any thread. A transfer that begins while the process ends is cancelled.
    void begin(std::shared_ptr<URLTransfer> transfer);
    // To be called after the transfer was cancelled.
    void stop(std::shared_ptr<URLTransfer> transfer);
    // To be called when the delegate has room again.
    void proceed(std::shared_ptr<URLTransfer> transfer);

  private:
    using Clock = HTTPExchange::Clock;

    struct Command {
        enum class Kind { begin, stop, proceed } kind;
        std::shared_ptr<URLTransfer> transfer;
    };

    TransferEngine();

    enum class Posted { taken, isStopping, withoutThread };

    Posted post(Command command);
    void wake();
    bool startThread();
    static void stopThread();
    void run();
    void wait();
    void runCommands();
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

    std::mutex lock_; // guards the members below
    std::condition_variable hasStopped_;
    std::vector<Command> commands_;
    bool stops_ = false;
    bool isRunning_ = false;
    bool isWaiting_ = false;
};

} // namespace zelto
