#pragma once

#include "Support/TestCertificates.h"

#include <Platform/URL.h>

#include <functional>
#include <memory>
#include <string>

namespace zelto {

// A server on 127.0.0.1 that speaks TLS and answers each request without a body over HTTP/1.1 with "secure".
class TestTLSServer {
  public:
    struct Options {
        TestCertificate certificate;
        int newestVersion = 0; // as OpenSSL numbers them; 0 for the newest it knows
        // Ends the connection behind this text, without TLS's own end, instead of the answer.
        std::string cutAnswer = {};
    };

    explicit TestTLSServer(Options options);
    ~TestTLSServer();
    TestTLSServer(const TestTLSServer&) = delete;
    TestTLSServer& operator=(const TestTLSServer&) = delete;

    std::uint16_t port() const;
    // "https://<host>:<port>/"
    URL url(const std::string& host = "localhost") const;

    int connectionCount() const; // that got through the handshake or tried to
    int requestCount() const;
    std::string protocol() const; // "TLSv1.3", of the last request

  private:
    class State;
    std::unique_ptr<State> state_;
};

} // namespace zelto
