#pragma once

#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

using SteadyTime = std::chrono::steady_clock::time_point;

// Sockets that listen on 127.0.0.1 and, where this machine has it, on [::1], both at one port; 0 is a free
// one.
struct LoopbackListeners {
    std::vector<FileDescriptor> sockets;
    std::uint16_t port = 0;

    static Result<LoopbackListeners, std::string> open(std::uint16_t port);
};

enum class SocketEnd { closed, timedOut };

// Reads and writes of a socket that does not block, each with a deadline.
Result<std::size_t, SocketEnd> receiveSome(int socket, std::span<char> buffer, SteadyTime deadline);
// The time-out counts from the last byte that was sent.
Result<void, SocketEnd> sendAll(int socket, std::string_view bytes, std::chrono::duration<double> timeout);

bool isClosedByPeer(int socket);

// The peer sees a reset instead of an end when the socket is closed.
void resetWhenClosed(int socket);
// Signals the end to the peer, and reads for a moment what it still sends, so that a reset does not overtake
// the last response.
void closeGently(int socket);

} // namespace zelto::sandbox
