#pragma once

#include <Platform/FileDescriptor.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zelto {

// A connection to a port of this machine that sends the given bytes.
class RawClient {
  public:
    // `isIPv6`: to [::1] instead of 127.0.0.1.
    explicit RawClient(std::uint16_t port, bool isIPv6 = false);

    bool isConnected() const { return static_cast<bool>(socket_); }

    // False if the peer has closed.
    bool send(std::string_view bytes) const;

    // Everything that arrives until the peer closes; the test fails if it does not close within a minute.
    std::string receiveAll() const;

    static std::string exchange(std::uint16_t port, std::string_view bytes);

  private:
    FileDescriptor socket_;
};

} // namespace zelto
