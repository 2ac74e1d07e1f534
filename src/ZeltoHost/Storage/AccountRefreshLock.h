#pragma once

#include <ZeltoIntegrations/Client/RefreshLock.h>

#include <Platform/FileDescriptor.h>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <thread>
#include <vector>

namespace zelto {

// Keeps refreshes apart between the processes that share a data directory, by a file below "locks" for each
// account. It is held around a refresh alone, never for a whole command. Who waits holds no thread; after
// `maximumWait` it is given null, and its refresh fails without being sent.
class AccountRefreshLock final : public RefreshLock {
  public:
    static constexpr std::chrono::seconds maximumWait{150}; // more than a refresh that stands still takes

    explicit AccountRefreshLock(std::filesystem::path dataDirectory,
                                std::chrono::milliseconds timeout = maximumWait);
    ~AccountRefreshLock() override; // whoever waits is given null

    void take(const std::string& serviceCredentialsKey, Callback<std::shared_ptr<void>> taken) override;

  private:
    struct Waiting {
        FileDescriptor file;
        Callback<std::shared_ptr<void>> taken;
        std::chrono::steady_clock::time_point deadline;
    };

    bool wait(Waiting& waiting);
    void watch(const std::stop_token& stop);
    static bool isSettled(Waiting& waiting);

    const std::filesystem::path dataDirectory_;
    const std::chrono::milliseconds timeout_;
    std::mutex lock_; // guards what follows
    std::condition_variable_any changed_;
    std::vector<Waiting> waiting_;
    std::jthread watch_; // while somebody waits; last, so that it ends first
};

} // namespace zelto
