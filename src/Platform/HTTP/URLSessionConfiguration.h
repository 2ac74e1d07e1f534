#pragma once

#include <Platform/Date.h>
#include <Platform/URL.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace zelto {

// What the tasks of one session keep to. A plain value; a session copies it.
struct URLSessionConfiguration {
    // No cookies, no cache on disk, no credentials of the environment; else the process's defaults as they
    // stand at the call.
    static URLSessionConfiguration ephemeral();

    // What ephemeral() gives from now on, in the whole process: for a host, once, before its first session.
    // Any thread.
    static void setDefaults(URLSessionConfiguration defaults);

    // Sends every request that is not to a loopback host to this address instead, as plain http, otherwise
    // unchanged with its Host: how a local stand-in of all services is reached. An http URL of a loopback
    // address and port; with any other every task fails with `invalidRequest`.
    std::optional<URL> route;

    // "http://proxy.example:3128". Without it the environment's (https_proxy, all_proxy, no_proxy). What is
    // on a loopback address never goes through a proxy.
    std::optional<std::string> proxy;

    // Certificates to trust, in PEM, instead of the system's store. Verification cannot be turned off.
    std::optional<std::filesystem::path> certificateAuthorities;

    std::uint64_t largestAnswer = std::uint64_t{256} << 20; // bytes, counted after decompression
    std::uint64_t largestHeader = 300'000;                  // bytes of all fields of one answer
    TimeInterval longestTransfer{7 * 24 * 3600.0};

    // How long nothing may move, instead of each request's own time-out.
    std::optional<TimeInterval> timeout;

    // Further tasks wait, in order of resuming. Far above 64 a transfer costs several times as much.
    int simultaneousTransfers = 64;
};

} // namespace zelto
