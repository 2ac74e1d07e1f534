#pragma once

// Internal to the transport.

#include <Platform/HTTP/TransferRecord.h>
#include <Platform/HTTP/URLRequest.h>

#include <chrono>
#include <cstddef>
#include <memory>

namespace zelto {

// Collects the record of one task while somebody observes them.
class RecordedTransfer {
  public:
    // Null while nobody does.
    static std::unique_ptr<RecordedTransfer> of(const URLRequest& request);

    void begin() { begunAt_ = Clock::now(); }

    void receive(std::size_t size) { record_.responseSize += size; }

    // Calls the observer.
    void end(std::optional<int> status, const std::optional<URLError>& error);

  private:
    using Clock = std::chrono::steady_clock;

    explicit RecordedTransfer(TransferRecord record) : record_(std::move(record)) {}

    TransferRecord record_;
    Clock::time_point begunAt_ = Clock::now();
};

} // namespace zelto
