#pragma once

#include <Platform/URL.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace zelto {

// A proxy on 127.0.0.1 for a server there. It passes bytes on as they come and ends each connection, by a
// reset on both sides, at the byte that its plan says.
class KillingProxy {
  public:
    // How many bytes of a connection are passed in each direction.
    struct Limits {
        std::uint64_t toServer = UINT64_MAX;
        std::uint64_t toClient = UINT64_MAX;
    };

    // Gets the connection's number, from 0; one call at a time.
    using Plan = std::function<Limits(int connection)>;

    KillingProxy(std::uint16_t serverPort, Plan plan);
    ~KillingProxy();
    KillingProxy(const KillingProxy&) = delete;
    KillingProxy& operator=(const KillingProxy&) = delete;

    URL url() const; // "http://127.0.0.1:<port>"

    int connectionCount() const;
    int killedCount() const;

  private:
    class State;
    std::unique_ptr<State> state_;
};

} // namespace zelto
