#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <netinet/in.h>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

// What a process costs that uploads a large file to a server on this machine, which is another process.

namespace zelto {

inline constexpr std::int64_t mebibyte = 1 << 20;

// Responds to each request when its body has arrived, and discards the body.
class Sink {
  public:
    explicit Sink(int connection) : connection_(connection) {}

    void serve() {
        for (;;) {
            std::size_t end = 0;
            while ((end = buffered_.find("\r\n\r\n")) == std::string::npos) {
                if (!fill()) {
                    return;
                }
            }
            const auto head = buffered_.substr(0, end + 4);
            buffered_.erase(0, head.size());
            if (!skip(contentLength(head))) {
                return;
            }
            constexpr std::string_view response =
                "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: "
                "10\r\n\r\n{\"id\":\"1\"}";
            if (::send(connection_, response.data(), response.size(), MSG_NOSIGNAL) < 0) {
                return;
            }
        }
    }

  private:
    static std::int64_t contentLength(std::string_view head) {
        constexpr std::string_view field = "Content-Length: ";
        std::int64_t length = 0;
        if (const auto at = head.find(field); at != head.npos) {
            const auto digits = head.substr(at + field.size());
            std::from_chars(digits.data(), digits.data() + digits.size(), length);
        }
        return length;
    }

    bool fill() {
        const auto count = ::recv(connection_, bytes_.data(), bytes_.size(), 0);
        if (count > 0) {
            buffered_.append(bytes_.data(), static_cast<std::size_t>(count));
        }
        return count > 0;
    }

    bool skip(std::int64_t left) {
        const auto held = std::min<std::int64_t>(left, std::ssize(buffered_));
        buffered_.erase(0, static_cast<std::size_t>(held));
        for (left -= held; left > 0;) {
            const auto count =
                ::recv(connection_, bytes_.data(),
                       static_cast<std::size_t>(std::min<std::int64_t>(left, std::ssize(bytes_))), 0);
            if (count <= 0) {
                return false;
            }
            left -= count;
        }
        return true;
    }

    const int connection_;
    std::string buffered_;
    std::array<char, 1 << 18> bytes_{};
};

// In a process of its own, so that its work and memory are not counted.
class ServerProcess {
  public:
    ServerProcess() {
        const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (::bind(listener, reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
            ::listen(listener, 16) != 0 ||
            ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
            std::perror("server");
            std::exit(1);
        }
        port_ = ntohs(address.sin_port);
        process_ = ::fork();
        if (process_ == 0) {
            for (;;) {
                const int connection = ::accept(listener, nullptr, nullptr);
                if (::fork() == 0) {
                    Sink(connection).serve();
                    ::_exit(0);
                }
                ::close(connection);
            }
        }
        ::close(listener);
    }

    ~ServerProcess() {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }

    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    std::string url() const { return "http://127.0.0.1:" + std::to_string(port_); }

  private:
    int port_ = 0;
    pid_t process_ = 0;
};

// What a process cost: CPU time and time, resident memory at its peak and, if it reports that, before the
// work.
struct Cost {
    double milliseconds = 1e30;
    double wall = 1e30;
    double peak = 1e30;
    double idle = 0;
};

inline double mebibytesOf(const std::string& field, const std::string& process) {
    std::ifstream status("/proc/" + process + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(field + ":")) {
            return std::strtod(line.c_str() + field.size() + 1, nullptr) / 1024;
        }
    }
    return 0;
}

// Runs a program. Its peak is read while it runs, since the value reported at its end includes the memory of
// the process that it was forked from.
inline Cost costOf(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (auto& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    int ends[2] = {};
    if (::pipe(ends) != 0) {
        std::exit(1);
    }
    const auto begin = std::chrono::steady_clock::now();
    const auto process = ::fork();
    if (process == 0) {
        ::dup2(ends[1], STDOUT_FILENO);
        ::close(ends[0]);
        ::close(ends[1]);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    }
    ::close(ends[1]);
    Cost cost{0, 0, 0, 0};
    int status = 0;
    rusage usage = {};
    while (::wait4(process, &status, WNOHANG, &usage) == 0) {
        cost.peak = std::max(cost.peak, mebibytesOf("VmHWM", std::to_string(process)));
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    cost.wall = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
    std::array<char, 64> reported{};
    if (::read(ends[0], reported.data(), reported.size() - 1) > 0) {
        cost.idle = std::strtod(reported.data(), nullptr);
    }
    ::close(ends[0]);
    if (status != 0) {
        std::fprintf(stderr, "%s failed with status %d\n", words.front().c_str(), status);
        std::exit(1);
    }
    const auto milliseconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    cost.milliseconds = milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
    return cost;
}

inline Cost leastOf(int rounds, const std::vector<std::string>& words) {
    Cost least;
    for (int round = 0; round < rounds; ++round) {
        const auto cost = costOf(words);
        least.milliseconds = std::min(least.milliseconds, cost.milliseconds);
        least.wall = std::min(least.wall, cost.wall);
        least.peak = std::min(least.peak, cost.peak);
        least.idle = cost.idle;
    }
    return least;
}

// A file of that many MiB, which is sparse, so that the disk does not matter.
class SparseFile {
  public:
    explicit SparseFile(std::int64_t size)
        : path(std::filesystem::temp_directory_path() / ("zelto-upload-" + std::to_string(::getpid()))) {
        std::ofstream(path).close();
        std::filesystem::resize_file(path, static_cast<std::uintmax_t>(size * mebibyte));
    }

    ~SparseFile() { std::filesystem::remove(path); }

    SparseFile(const SparseFile&) = delete;
    SparseFile& operator=(const SparseFile&) = delete;

    const std::filesystem::path path;
};

inline void print(const char* name, const Cost& cost) {
    std::printf("%-22s %8.1f ms, %8.1f ms of CPU   %6.1f MiB at the peak", name, cost.wall, cost.milliseconds,
                cost.peak);
    if (cost.idle > 0) {
        std::printf("   %5.1f MiB above idle", cost.peak - cost.idle);
    }
    std::printf("\n");
}

} // namespace zelto
