#pragma once

#include <Platform/Date.h>
#include <Platform/URL.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace zelto {

// Settings of the tasks of a session. A plain value; a session copies it.
struct URLSessionConfiguration {
    // A copy of the process's current defaults. No cookies, no cache on disk, no credentials of the
    // environment.
    static URLSessionConfiguration ephemeral();

    // Changes what ephemeral() gives in the whole process: for a host, once, before its first session. Any
    // thread.
    static void setDefaults(URLSessionConfiguration defaults);

    // Sends every request to a host that is not loopback to this address instead, as plain http and otherwise
    // unchanged, its Host included: for a local stand-in of all services. An http URL with a loopback address
    // and a port; with any other, every task fails with `invalidRequest`.
    std::optional<URL> route;

    // "http://proxy.example:3128". Without it, the environment's proxy is used (https_proxy, all_proxy,
    // no_proxy). Requests to loopback addresses never go through a proxy.
    std::optional<std::string> proxy;

    // Certificates to trust, in PEM, instead of the system's store. Verification cannot be turned off.
    std::optional<std::filesystem::path> certificateAuthorities;

    // In bytes, counted after decompression. A body with a status of 400 or above is not refused but ends
    // after 1 MiB.
    std::uint64_t maximumResponseSize = std::uint64_t{256} << 20;
    std::uint64_t maximumHeaderSize = 300'000; // bytes of all fields of a response
    TimeInterval maximumTransferTime{7 * 24 * 3600.0};

    // Replaces the time-out of every request: how long nothing may move.
    std::optional<TimeInterval> timeout;

    // Further tasks wait, in the order of resuming. Far above 64, a transfer costs several times as much.
    int simultaneousTransfers = 64;
};

} // namespace zelto
