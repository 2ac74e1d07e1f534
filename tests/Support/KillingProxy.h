#pragma once

#include <Platform/URL.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace zelto {

// A proxy on 127.0.0.1 before a server there, that passes bytes on as they come and ends each connection, to
// both sides by a reset, at the byte that its plan says.
class KillingProxy {
  public:
    // How many bytes of a connection get through each way.
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
