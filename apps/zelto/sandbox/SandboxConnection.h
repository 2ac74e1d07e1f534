#pragma once

#include <Platform/FileDescriptor.h>
#include <Platform/URL.h>

#include <cstdint>
#include <optional>
#include <stop_token>

namespace zelto::cli {

// Where `zelto sandbox` listens if nothing else is asked for.
inline constexpr std::uint16_t standardSandboxPort = 8377;

// A connection to a sandbox over which nothing is sent: whether anybody listens there, and until when.
class SandboxConnection {
  public:
    // `nullopt` if nobody listens at the address, of this machine.
    static std::optional<SandboxConnection> open(const URL& sandbox);

    // False if a stop is asked for before the other side has ended it.
    bool waitForEnd(const std::stop_token& stop) const;

  private:
    explicit SandboxConnection(FileDescriptor socket) : socket_(std::move(socket)) {}

    FileDescriptor socket_;
};

} // namespace zelto::cli
