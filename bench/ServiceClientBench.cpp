#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>
#include <TrovenhalCommon/KeyChain/MemoryKeyChainStore.h>
#include <ZeltoIntegrations/Client/AccountAuthoriser.h>
#include <ZeltoIntegrations/Client/ServiceClient.h>

#include <Platform/JSON/JSONRecordDescription.h>

#include <curl/curl.h>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The cost of a request to a service, compared with a bare libcurl multi loop that decodes the same record
// from the same server, which is another process. Each figure is the best of several alternating rounds; CPU
// is that of this process, all threads.

namespace zelto {

struct BenchMember {
    std::string id;
    std::string fullName;
    std::string username;
    std::string email;
    std::vector<std::string> idBoards;
    bool confirmed = false;

    bool operator==(const BenchMember&) const = default;
};

ZELTO_JSON_CODED(BenchMember);
ZELTO_JSON_RECORD(BenchMember, id, fullName, username, email, idBoards, confirmed);

} // namespace zelto

namespace {

using namespace zelto;

constexpr int rounds = 5;

constexpr std::string_view body =
    R"({"id":"5abbe4b7ddc1b351ef961414","activityBlocked":false,"avatarHash":"fc8faaaee46666a4eb8b626c08933e16",)"
    R"("confirmed":true,"fullName":"Alice Example","username":"alice","initials":"AE","idBoards":)"
    R"(["5abbe4b7ddc1b351ef961415","5abbe4b7ddc1b351ef961416","5abbe4b7ddc1b351ef961417"],)"
    R"("email":"alice@example.com","prefs":{"locale":"en","colorBlind":false}})";

// Responds to every request on any number of connections, until the parent process ends.
[[noreturn]] void serve(int listener) {
    const std::string response = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
                                 std::to_string(body.size()) + "\r\n\r\n" + std::string(body);
    const int poll = ::epoll_create1(0);
    const auto watch = [poll](int socket) {
        epoll_event event{.events = EPOLLIN, .data = {.fd = socket}};
        ::epoll_ctl(poll, EPOLL_CTL_ADD, socket, &event);
    };
    watch(listener);
    std::map<int, std::string> unread;
    for (;;) {
        epoll_event events[256];
        const int count = ::epoll_wait(poll, events, std::size(events), -1);
        for (int index = 0; index < count; ++index) {
            const int socket = events[index].data.fd;
            if (socket == listener) {
                const int accepted = ::accept(listener, nullptr, nullptr);
                const int on = 1;
                ::setsockopt(accepted, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
                watch(accepted);
                continue;
            }
            char bytes[16384];
            const auto read = ::recv(socket, bytes, sizeof bytes, 0);
            if (read <= 0) {
                unread.erase(socket);
                ::close(socket);
                continue;
            }
            auto& text = unread[socket].append(bytes, static_cast<std::size_t>(read));
            for (std::size_t end = 0; (end = text.find("\r\n\r\n")) != text.npos;) {
                text.erase(0, end + 4);
                if (::send(socket, response.data(), response.size(), MSG_NOSIGNAL) < 0) {
                    break;
                }
            }
        }
    }
}

int startServer() {
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (::bind(listener, generic, size) != 0 || ::listen(listener, 1024) != 0 ||
        ::getsockname(listener, generic, &size) != 0) {
        std::perror("the server");
        std::exit(1);
    }
    if (::fork() == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        serve(listener);
    }
    ::close(listener);
    return ntohs(address.sin_port);
}

std::string url;

void require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "%s\n", what);
        std::exit(1);
    }
}

void check(const BenchMember& member) {
    require(member.confirmed && member.idBoards.size() == 3, "another record came");
}

// ServiceClient: `inFlight` requests at a time.
class ServiceRun {
  public:
    ServiceRun(int count, int inFlight) : left_(count), unfinished_(count), inFlight_(inFlight) {}

    void run() {
        auto credentials = ServiceAccountCredentials::forIdentifier("Bench");
        credentials.accessToken = "token-0123456789";
        client_ =
            std::make_unique<ServiceClient>(std::make_shared<AccountAuthoriser>(credentials), JSONDecoder());
        for (int index = 0; index < inFlight_; ++index) {
            sendNext();
        }
        end_.get_future().wait();
    }

  private:
    void sendNext() {
        if (left_.fetch_sub(1) <= 0) {
            return;
        }
        URLRequest request(*URL::parse(url));
        request.headers.set("Content-Type", "application/json");
        request.headers.set("Accept", "application/json");
        client_->perform<BenchMember>(std::move(request), nullptr, [this](ServiceResult<BenchMember> member) {
            require(member.has_value(), "a request failed");
            check(*member);
            sendNext();
            if (--unfinished_ == 0) {
                end_.set_value();
            }
        });
    }

    std::atomic<int> left_;
    std::atomic<int> unfinished_;
    const int inFlight_;
    std::unique_ptr<ServiceClient> client_;
    std::promise<void> end_;
};

// A bare multi loop on this thread.
class CurlRun {
  public:
    CurlRun(int count, int inFlight) : left_(count), unfinished_(count), inFlight_(std::min(inFlight, 64)) {}

    void run() {
        multi_ = ::curl_multi_init();
        headers_ = ::curl_slist_append(nullptr, "Content-Type: application/json");
        headers_ = ::curl_slist_append(headers_, "Accept: application/json");
        headers_ = ::curl_slist_append(headers_, "Authorization: Bearer token-0123456789");
        ::curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, 64L);
        for (int index = 0; index < inFlight_; ++index) {
            transfers_.push_back(std::make_unique<Transfer>());
            begin(*transfers_.back());
        }
        while (unfinished_ > 0) {
            int running = 0;
            ::curl_multi_perform(multi_, &running);
            takeEnds();
            ::curl_multi_poll(multi_, nullptr, 0, 1000, nullptr);
        }
        for (auto& transfer : transfers_) {
            ::curl_easy_cleanup(transfer->easy);
        }
        ::curl_slist_free_all(headers_);
        ::curl_multi_cleanup(multi_);
    }

  private:
    struct Transfer {
        CURL* easy = ::curl_easy_init();
        std::string body;
    };

    static std::size_t write(char* bytes, std::size_t size, std::size_t count, void* user) {
        static_cast<std::string*>(user)->append(bytes, size * count);
        return size * count;
    }

    void begin(Transfer& transfer) {
        if (left_-- <= 0) {
            return;
        }
        transfer.body.clear();
        ::curl_easy_reset(transfer.easy);
        ::curl_easy_setopt(transfer.easy, CURLOPT_URL, url.c_str());
        ::curl_easy_setopt(transfer.easy, CURLOPT_HTTPHEADER, headers_);
        ::curl_easy_setopt(transfer.easy, CURLOPT_NOSIGNAL, 1L);
        ::curl_easy_setopt(transfer.easy, CURLOPT_WRITEFUNCTION, write);
        ::curl_easy_setopt(transfer.easy, CURLOPT_WRITEDATA, &transfer.body);
        ::curl_easy_setopt(transfer.easy, CURLOPT_PRIVATE, &transfer);
        ::curl_multi_add_handle(multi_, transfer.easy);
    }

    void takeEnds() {
        int waiting = 0;
        while (const auto* message = ::curl_multi_info_read(multi_, &waiting)) {
            Transfer* transfer = nullptr;
            ::curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
            require(message->data.result == CURLE_OK, "a transfer failed");
            ::curl_multi_remove_handle(multi_, transfer->easy);
            const auto member = JSONDecoder().decode<BenchMember>(transfer->body);
            require(member.has_value(), "no record");
            check(*member);
            --unfinished_;
            begin(*transfer);
        }
    }

    int left_;
    int unfinished_;
    const int inFlight_;
    CURLM* multi_ = nullptr;
    curl_slist* headers_ = nullptr;
    std::vector<std::unique_ptr<Transfer>> transfers_;
};

struct Cost {
    double microseconds = 1e30;
    double cpu = 1e30;
};

double cpuMicroseconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto of = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_usec);
    };
    return of(usage.ru_utime) + of(usage.ru_stime);
}

template <class Run> void measure(int count, int inFlight, Cost& best) {
    const auto cpu = cpuMicroseconds();
    const auto start = std::chrono::steady_clock::now();
    Run(count, inFlight).run();
    const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - start;
    best.microseconds = std::min(best.microseconds, took.count() / count);
    best.cpu = std::min(best.cpu, (cpuMicroseconds() - cpu) / count);
}

void compare(const char* name, int count, int inFlight) {
    Cost service;
    Cost bare;
    for (int round = 0; round < rounds; ++round) {
        measure<ServiceRun>(count, inFlight, service);
        measure<CurlRun>(count, inFlight, bare);
    }
    std::printf(
        "%-24s ServiceClient %7.1f us, CPU %6.1f us   bare libcurl %7.1f us, CPU %6.1f us   rate %.2f, CPU "
        "%.2f of libcurl's\n",
        name, service.microseconds, service.cpu, bare.microseconds, bare.cpu,
        bare.microseconds / service.microseconds, service.cpu / bare.cpu);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    LVXKeyChainStoreFactory::setStore(std::make_shared<MemoryKeyChainStore>());
    url = "http://127.0.0.1:" + std::to_string(startServer()) + "/1/members/me?fields=all";
    // "service 64 100000" runs only one of the two, for a profiler.
    if (argc == 4) {
        Cost cost;
        const int inFlight = std::atoi(argv[2]);
        const int count = std::atoi(argv[3]);
        if (argv[1] == std::string_view("service")) {
            measure<ServiceRun>(count, inFlight, cost);
        } else {
            measure<CurlRun>(count, inFlight, cost);
        }
        std::printf("%s: %.1f us, CPU %.1f us\n", argv[1], cost.microseconds, cost.cpu);
        return 0;
    }
    compare("64 in flight", 20'000, 64);
    compare("1 at a time", 3'000, 1);
    compare("10,000 queued at once", 10'000, 10'000);
    return 0;
}
