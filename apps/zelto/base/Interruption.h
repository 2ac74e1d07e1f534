#pragma once

#include <stop_token>
#include <thread>

namespace zelto::cli {

// While one lives, the first Ctrl-C (or SIGTERM) is a request to stop instead of the process's end; a second
// one ends it as ever. One at a time.
class Interruption {
  public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    std::stop_token stop() const { return source_.get_token(); }

  private:
    std::stop_source source_;
    std::jthread watch_;
};

} // namespace zelto::cli
