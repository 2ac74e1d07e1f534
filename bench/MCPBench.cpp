// Tool calls on a server in another process: calls per second and processor time per call of this process,
// compared with a bare libcurl easy handle that posts the same bytes and parses the response with Boost.JSON.

#include <ZeltoIntegrations/MCP/MCPClient.h>

#include <boost/json.hpp>
#include <curl/curl.h>

#include <arpa/inet.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <future>
#include <netinet/tcp.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

namespace zelto {
namespace {

enum class Form { json, eventStream };

double seconds(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

bool sendAll(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

// The value of `"id":`: all that a response needs of a request.
std::string idIn(std::string_view request) {
    const auto begin = request.find("\"id\":");
    if (begin == request.npos) {
        return {};
    }
    const auto text = request.substr(begin + 5);
    return std::string(text.substr(0, text.find('"', 1) + 1));
}

std::string respondTo(const std::string& request, Form form, const std::string& text) {
    const auto id = idIn(request);
    if (id.empty()) {
        return "HTTP/1.1 202 Accepted\r\nContent-Length: 0\r\n\r\n";
    }
    const bool isHandshake = request.find("\"initialize\"") != request.npos;
    std::string body = R"({"jsonrpc":"2.0","id":)" + id + R"(,"result":)";
    body +=
        isHandshake
            ? R"({"protocolVersion":"2025-11-25","capabilities":{},"serverInfo":{"name":"b","version":"1"}}})"
            : R"({"content":[{"type":"text","text":")" + text + R"("}]}})";
    if (form == Form::eventStream) {
        body = "event: message\ndata: " + body + "\n\n";
    }
    return std::string("HTTP/1.1 200 OK\r\nContent-Type: ") +
           (form == Form::json ? "application/json" : "text/event-stream") +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

// Responds to one request after the other; the requests are small.
void serve(int connection, Form form, const std::string& text) {
    const int yes = 1;
    ::setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    std::string request;
    char buffer[1 << 16];
    for (;;) {
        const auto count = ::recv(connection, buffer, sizeof buffer, 0);
        if (count <= 0) {
            return;
        }
        request.append(buffer, static_cast<std::size_t>(count));
        const auto head = request.find("\r\n\r\n");
        const auto length = request.find("Content-Length: ");
        if (head != request.npos && length != request.npos &&
            request.size() >= head + 4 + std::strtoul(request.c_str() + length + 16, nullptr, 10)) {
            if (!sendAll(connection, respondTo(request, form, text))) {
                return;
            }
            request.clear();
        }
    }
}

// A process that serves until it is killed; each connection gets a child process.
class Server {
  public:
    Server(Form form, std::size_t size) {
        const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{.sin_family = AF_INET, .sin_port = 0, .sin_addr = {htonl(INADDR_LOOPBACK)}};
        socklen_t length = sizeof address;
        if (::bind(listener, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
            ::listen(listener, 16) != 0 ||
            ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
            std::abort();
        }
        port_ = ntohs(address.sin_port);
        process_ = ::fork();
        if (process_ == 0) {
            ::setpgid(0, 0);
            const std::string text(size, 'x');
            for (;;) {
                const int connection = ::accept(listener, nullptr, nullptr);
                if (::fork() == 0) {
                    serve(connection, form, text);
                    ::_exit(0);
                }
                ::close(connection);
            }
        }
        ::setpgid(process_, process_);
        ::close(listener);
    }

    ~Server() {
        ::kill(-process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }

    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/mcp"; }

  private:
    int port_ = 0;
    pid_t process_ = 0;
};

struct Rate {
    double callsPerSecond;
    double microsecondsOfCPU; // per call
};

template <class F> Rate rateOf(int calls, F&& call) {
    call();
    const auto start = seconds(CLOCK_MONOTONIC);
    const auto processor = seconds(CLOCK_PROCESS_CPUTIME_ID);
    for (int index = 0; index < calls; ++index) {
        call();
    }
    return {calls / (seconds(CLOCK_MONOTONIC) - start),
            (seconds(CLOCK_PROCESS_CPUTIME_ID) - processor) / calls * 1e6};
}

std::size_t keep(const char* bytes, std::size_t, std::size_t count, void* text) {
    static_cast<std::string*>(text)->append(bytes, count);
    return count;
}

// Posts the client's request and extracts the text of the response.
Rate bareRate(const Server& server, Form form, int calls) {
    CURL* const curl = curl_easy_init();
    const std::string request =
        R"({"jsonrpc":"2.0","id":"01234567-89AB-4CDE-8F01-23456789ABCD","method":"tools/call","params":{"name":"t","arguments":{"n":1}}})";
    std::string body;
    curl_slist* fields = curl_slist_append(nullptr, "Content-Type: application/json");
    fields = curl_slist_append(fields, "Accept: application/json, text/event-stream");
    curl_easy_setopt(curl, CURLOPT_URL, server.url().c_str());
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, fields);
    curl_easy_setopt(curl, CURLOPT_POSTFIELDS, request.c_str());
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, keep);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &body);
    const auto rate = rateOf(calls, [&] {
        body.clear();
        if (curl_easy_perform(curl) != CURLE_OK) {
            std::abort();
        }
        std::string_view json = body;
        if (form == Form::eventStream) {
            json = json.substr(json.find("data: ") + 6);
            json = json.substr(0, json.find('\n'));
        }
        const auto value = boost::json::parse(boost::json::string_view(json.data(), json.size()));
        if (value.at("result").at("content").at(0).at("text").as_string().empty()) {
            std::abort();
        }
    });
    curl_slist_free_all(fields);
    curl_easy_cleanup(curl);
    return rate;
}

Rate clientRate(const Server& server, int calls) {
    MCPClient client(URL::parse(server.url()).value());
    std::promise<bool> connected;
    client.connect([&](const auto& result) { connected.set_value(result.has_value()); });
    if (!connected.get_future().get()) {
        std::abort();
    }
    const JSONValue arguments(JSONObject{{"n", 1}});
    return rateOf(calls, [&] {
        std::promise<bool> done;
        client.callTool("t", arguments, [&](const MCPResult<MCPToolCallResult>& result) {
            done.set_value(result && result->content.size() == 1);
        });
        if (!done.get_future().get()) {
            std::abort();
        }
    });
}

void measure(const char* name, Form form, std::size_t size, int calls) {
    const Server server(form, size);
    const auto bare = bareRate(server, form, calls);
    const auto client = clientRate(server, calls);
    std::printf(
        "%-24s client %9.1f calls/s %10.1f us CPU   bare %9.1f calls/s %10.1f us CPU   %.2f times the CPU\n",
        name, client.callsPerSecond, client.microsecondsOfCPU, bare.callsPerSecond, bare.microsecondsOfCPU,
        client.microsecondsOfCPU / bare.microsecondsOfCPU);
}

} // namespace
} // namespace zelto

int main() {
    using zelto::Form;
    curl_global_init(CURL_GLOBAL_DEFAULT);
    zelto::measure("JSON, 50 B", Form::json, 50, 20'000);
    zelto::measure("event stream, 50 B", Form::eventStream, 50, 20'000);
    zelto::measure("JSON, 10 MB", Form::json, 10'000'000, 40);
    zelto::measure("event stream, 10 MB", Form::eventStream, 10'000'000, 40);
}
