#include "TestTLSServer.h"

#include "Support/LoopbackServer.h"

#include <openssl/ssl.h>

#include <pthread.h>

#include <atomic>
#include <csignal>
#include <mutex>
#include <utility>

namespace zelto {

namespace {

using Context = std::unique_ptr<SSL_CTX, void (*)(SSL_CTX*)>;

Context contextFor(const TestTLSServer::Options& options) {
    Context context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    SSL_CTX_use_certificate(context.get(), options.certificate.certificate.get());
    SSL_CTX_use_PrivateKey(context.get(), options.certificate.key.get());
    SSL_CTX_set_security_level(context.get(), 0); // allows obsolete protocol versions
    SSL_CTX_set_min_proto_version(context.get(), TLS1_VERSION);
    SSL_CTX_set_max_proto_version(context.get(), options.newestVersion);
    return context;
}

} // namespace

class TestTLSServer::State {
  public:
    explicit State(Options options) : options_(std::move(options)), context_(contextFor(options_)) {}

    std::uint16_t port() const { return server_.port(); }

    int connectionCount() const { return server_.connectionCount(); }

    int requestCount() const { return requestCount_; }

    std::string protocol() const {
        const std::lock_guard guard(lock_);
        return protocol_;
    }

  private:
    void serve(int socket) {
        // OpenSSL writes without MSG_NOSIGNAL.
        sigset_t pipe;
        sigemptyset(&pipe);
        sigaddset(&pipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
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
            const std::string response = options_.cutResponse.empty()
                                             ? "HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nsecure"
                                             : options_.cutResponse;
            SSL_write(session.get(), response.data(), static_cast<int>(response.size()));
            if (!options_.cutResponse.empty()) {
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
    const Context context_;
    std::atomic<int> requestCount_ = 0;
    mutable std::mutex lock_;
    std::string protocol_;
    // Last, since it uses the other members.
    const LoopbackServer server_{[this](const LoopbackSocket& socket, int) { serve(socket.get()); }};
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
