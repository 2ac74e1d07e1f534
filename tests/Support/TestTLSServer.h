#pragma once

#include "Support/TestCertificates.h"

#include <Platform/URL.h>

#include <functional>
#include <memory>
#include <string>

namespace zelto {

// A server on 127.0.0.1 over TLS and HTTP/1.1 whose response to each request without a body is "secure".
class TestTLSServer {
  public:
    struct Options {
        TestCertificate certificate;
        int newestVersion = 0; // in OpenSSL's numbers; 0 for the newest that it supports
        // Sends this text in place of the response, and ends the connection without TLS's closing message.
        std::string cutResponse = {};
    };

    explicit TestTLSServer(Options options);
    ~TestTLSServer();
    TestTLSServer(const TestTLSServer&) = delete;
    TestTLSServer& operator=(const TestTLSServer&) = delete;

    std::uint16_t port() const;
    // "https://<host>:<port>/"
    URL url(const std::string& host = "localhost") const;

    int connectionCount() const; // that completed the handshake or tried to
    int requestCount() const;
    std::string protocol() const; // "TLSv1.3", of the last request

  private:
    class State;
    std::unique_ptr<State> state_;
};

} // namespace zelto
