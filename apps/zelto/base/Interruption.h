#pragma once

#include <stop_token>
#include <thread>

namespace zelto::cli {

// While an object exists, the first Ctrl-C (or SIGTERM) is a request to stop; a second one ends the process
// as usual. One object at a time.
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
