#pragma once

// For sources only.

#include <Platform/FileDescriptor.h>

#include <functional>
#include <stop_token>

#include <sys/eventfd.h>

namespace zelto {

// Makes a stop request visible to poll.
class StopSignal {
  public:
    explicit StopSignal(const std::stop_token& stop)
        : event_(::eventfd(0, EFD_CLOEXEC)), callback_(stop, [this] {
              [[maybe_unused]] const auto done = ::eventfd_write(event_.number(), 1);
          }) {}

    int descriptor() const { return event_.number(); }

  private:
    FileDescriptor event_;
    std::stop_callback<std::function<void()>> callback_;
};

} // namespace zelto
