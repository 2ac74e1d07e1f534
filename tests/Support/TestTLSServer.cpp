#include "TestTLSServer.h"

#include "Support/LoopbackSocket.h"

#include <openssl/ssl.h>

#include <pthread.h>
#include <sys/socket.h>

#include <atomic>
#include <csignal>
#include <list>
#include <mutex>
#include <thread>
#include <utility>

namespace zelto {

class TestTLSServer::State {
  public:
    explicit State(Options options)
        : options_(std::move(options)), context_(SSL_CTX_new(TLS_server_method()), SSL_CTX_free) {
        SSL_CTX_use_certificate(context_.get(), options_.certificate.certificate.get());
        SSL_CTX_use_PrivateKey(context_.get(), options_.certificate.key.get());
        SSL_CTX_set_security_level(context_.get(), 0); // so that it can speak what is too old
        SSL_CTX_set_min_proto_version(context_.get(), TLS1_VERSION);
        SSL_CTX_set_max_proto_version(context_.get(), options_.newestVersion);
        acceptor_ = std::thread([this] { accept(); });
    }

    ~State() {
        ::shutdown(listener_.socket(), SHUT_RDWR);
        acceptor_.join();
        for (auto& each : connections_) {
            {
                const std::lock_guard guard(lock_);
                ::shutdown(each.socket.get(), SHUT_RDWR);
            }
            each.thread.join();
        }
    }

    std::uint16_t port() const { return listener_.port(); }

    int connectionCount() const { return connectionCount_; }

    int requestCount() const { return requestCount_; }

    std::string protocol() const {
        const std::lock_guard guard(lock_);
        return protocol_;
    }

  private:
    struct Connection {
        LoopbackSocket socket;
        std::thread thread;
    };

    void accept() {
        while (auto socket = listener_.accept()) {
            ++connectionCount_;
            auto& connection = connections_.emplace_back();
            connection.socket = std::move(socket);
            connection.thread = std::thread([this, &connection] {
                // OpenSSL writes without MSG_NOSIGNAL.
                sigset_t pipe;
                sigemptyset(&pipe);
                sigaddset(&pipe, SIGPIPE);
                pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
                serve(connection.socket.get());
                const std::lock_guard guard(lock_);
                connection.socket = {};
            });
        }
    }

    void serve(int socket) {
        const std::unique_ptr<SSL, void (*)(SSL*)> session(SSL_new(context_.get()), SSL_free);
        SSL_set_fd(session.get(), socket);
        if (SSL_accept(session.get()) != 1) {
            return;
        }
        while (readHead(session.get())) {
            ++requestCount_;
            {
                const std::lock_guard guard(lock_);
                protocol_ = SSL_get_version(session.get());
            }
            const std::string answer = options_.cutAnswer.empty()
                                           ? "HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nsecure"
                                           : options_.cutAnswer;
            SSL_write(session.get(), answer.data(), static_cast<int>(answer.size()));
            if (!options_.cutAnswer.empty()) {
                return;
            }
        }
        SSL_shutdown(session.get());
    }

    static bool readHead(SSL* session) {
        std::string head;
        while (!head.ends_with("\r\n\r\n")) {
            char next = 0;
            if (SSL_read(session, &next, 1) != 1) {
                return false;
            }
            head += next;
        }
        return true;
    }

    const Options options_;
    const std::unique_ptr<SSL_CTX, void (*)(SSL_CTX*)> context_;
    const LoopbackListener listener_;
    std::atomic<int> connectionCount_ = 0;
    std::atomic<int> requestCount_ = 0;
    mutable std::mutex lock_;
    std::string protocol_;
    std::list<Connection> connections_;
    std::thread acceptor_;
};

TestTLSServer::TestTLSServer(Options options) : state_(std::make_unique<State>(std::move(options))) {}

TestTLSServer::~TestTLSServer() = default;

std::uint16_t TestTLSServer::port() const {
    return state_->port();
}

URL TestTLSServer::url(const std::string& host) const {
    return *URL::parse("https://" + host + ":" + std::to_string(port()) + "/?key=secret");
}

int TestTLSServer::connectionCount() const {
    return state_->connectionCount();
}

int TestTLSServer::requestCount() const {
    return state_->requestCount();
}

std::string TestTLSServer::protocol() const {
    return state_->protocol();
}

} // namespace zelto
